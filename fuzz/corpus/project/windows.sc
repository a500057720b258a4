"Model Compiler/Model File" "grün\crate.mdl"
"Model Compiler/Model Options/Prop Type" "7"
"Model Compiler/Model Options/Scale" "0.001"
"Model Compiler/Animation0/Rotation" "-5"
