// The values that the program keeps, one a line: the name in code, the section, the name in the store, and what a
// reader gets while the value was never written. settings_table.h includes this list for whatever it makes of each
// line, so it has no include guard. Within a section the order is that in which the values are told.

TEXT_SETTING(SdkDirectory, MainSection, "SDKDirectory", "")
TEXT_SETTING(GameDirectory, MainSection, "GameDirectory", "")
TEXT_SETTING(WineProgram, MainSection, "Wine Program", "")  // runs Windows programs; empty: looked for
NUMBER_SETTING(UncommonImageFormats, MainSection, "Uncommon Image Formats", 1)  // 0: read fewer
NUMBER_SETTING(TabSelect, MainSection, "TabSelect", 0)
NUMBER_SETTING(CompileMode, MainSection, "Compile Mode", 0)

// Options of every model.
TEXT_SETTING(Scale, MainSection, "Scale", "1.0")
TEXT_SETTING(Mass, MainSection, "Mass", "100.0")
TEXT_SETTING(SurfaceProp, MainSection, "SurfaceProp", "metal")
TEXT_SETTING(PropPhysicsType, MainSection, "PropPhysics Type", "metal.small")
TEXT_SETTING(AdditionalQc, MainSection, "Additional QC", "")
NUMBER_SETTING(StudioMdlOptions, MainSection, "StudioMDLOptions", 0)  // a bit for each switch
NUMBER_SETTING(ModelPath, MainSection, "Model Path", 1)               // 1: below materials\models

// The model project.
TEXT_SETTING(ConfigFile, MainSection, "Config File", "")
TEXT_SETTING(ModelFile, MainSection, "Model File", "")
TEXT_SETTING(ReferenceSmd, MainSection, "Reference SMD", "")
TEXT_SETTING(CollisionSmd, MainSection, "Collision SMD", "")
NUMBER_SETTING(AnimSmdCheck, MainSection, "Anim SMD Check", 0)
NUMBER_SETTING(PhySmdCheck, MainSection, "Phy SMD Check", 0)
NUMBER_SETTING(PropType, MainSection, "Prop Type", 0)
TEXT_SETTING(QcFile, MainSection, "QC File", "")
NUMBER_SETTING(ModelOptionsTab, MainSection, "Model Options Tab", 0)  // of the dialog of that name

// Export of textures.
TEXT_SETTING(VtfExportFile, MainSection, "VTFExportFile", "")
TEXT_SETTING(TgaExportFile, MainSection, "TGAExportFile", "")

// Materials.
TEXT_SETTING(MaterialsDir, MainSection, "Materials DIR", "")
TEXT_SETTING(Shader, MainSection, "Shader", "VertexLitGeneric")
NUMBER_SETTING(Transparency, MainSection, "Transparency", 0)
NUMBER_SETTING(SelfIllum, MainSection, "SelfIllum", 0)
NUMBER_SETTING(SelfIllumBaseAlpha, MainSection, "SelfIllumBaseAlpha", 0)
NUMBER_SETTING(HasNormal, MainSection, "HasNormal", 0)
TEXT_SETTING(NormalMap, MainSection, "Normal Map", "")
TEXT_SETTING(GlowMap, MainSection, "Glow Map", "")
TEXT_SETTING(Material0, MainSection, "Material0", "")
TEXT_SETTING(Material1, MainSection, "Material1", "")
TEXT_SETTING(Material2, MainSection, "Material2", "")
TEXT_SETTING(Material3, MainSection, "Material3", "")
NUMBER_SETTING(EnvMap, MainSection, "EnvMap", 0)
NUMBER_SETTING(EnvMapNormalMask, MainSection, "EnvMapNormalMask", 0)
NUMBER_SETTING(EnvMapIllumMask, MainSection, "EnvMapIllumMask", 0)
NUMBER_SETTING(EnvMapBaseMask, MainSection, "EnvMapBaseMask", 0)
TEXT_SETTING(EnvmapContrast, MainSection, "Envmap Contrast", "")
TEXT_SETTING(EnvmapTint, MainSection, "Envmap Tint", "")
TEXT_SETTING(EnvmapSaturation, MainSection, "Envmap Saturation", "")
TEXT_SETTING(EnvmapSpecularMap, MainSection, "Envmap SpecularMap", "")

// The window.
TEXT_SETTING(WindowGeometry, MainSection, "Window Geometry", "")  // position and size, base 64

// The window of game content.
TEXT_SETTING(ContentGeometry, MainSection, "Content Geometry", "")  // position and size, base 64
TEXT_SETTING(ContentSplit, MainSection, "Content Split", "")        // between folders and files, base 64
TEXT_SETTING(ContentOutput, MainSection, "Content Output", "")      // the folder that was extracted to

// The decompiler. While OutputDirectory was never written its readers use the user's documents folder.
TEXT_SETTING(OutputDirectory, DecompilerSection, "OutputDirectory", "")
TEXT_SETTING(LastMdlFile, DecompilerSection, "LastMDLFile", "")
NUMBER_SETTING(CheckBoxSettings, DecompilerSection, "CheckBoxSettings", 1)  // 2 and 4: the two boxes
NUMBER_SETTING(ReadyToCompile, DecompilerSection, "ReadyToCompile", 1)
NUMBER_SETTING(ModelAnimations, DecompilerSection, "Animations", 1)
NUMBER_SETTING(ModelMaterials, DecompilerSection, "Materials", 0)
NUMBER_SETTING(ModelPhysics, DecompilerSection, "Physics", 1)
NUMBER_SETTING(OwnModelFolders, DecompilerSection, "Own Model Folders", 1)
NUMBER_SETTING(ModelPane, DecompilerSection, "Model Pane", -1)  // 1: the model is shown; -1: where there is room
NUMBER_SETTING(ModelPanePosition, DecompilerSection, "Model Pane Position", 0)  // points left of it; 0: as it comes
TEXT_SETTING(RecentModels, DecompilerSection, "Recent Models", "")              // one a line, newest first
TEXT_SETTING(RecentDirectories, DecompilerSection, "Recent Directories", "")    // likewise
