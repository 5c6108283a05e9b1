[Compute_Shader]
#version 430
[Geometry_Shader]
[TessEval_Shader]
[TessControl_Shader]
[Compute_Shader]