"Model Compiler/Skin0/Skin Name" "a"
"Model Compiler/Skin2/Skin Name" "b"
no line at all
"Model Compiler/Animation0/Event0/name" "x"
"Model Compiler/Animation0/Event1/frame" "y

"Model Compiler/Mass" "-1"
