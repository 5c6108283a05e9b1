/// @file
/// One-call services: models, vertex lighting, shadow matrices, the Vulkan renderer module.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

/// Services of one call.
namespace aux {

/// Kernel::load_model_from_file: a model from the first loader that takes the file, the caller's;
/// null on failure.
ORV_API Model* load_model_from_file(const MeshDataVertexAttribsAllocParams& params,
                                    const char* filename, const char* model_dir,
                                    const char* resource_dir);
/// Kernel::load_model_from_file_lib3ds: the same with the core 3DS loader alone.
ORV_API Model* load_model_from_file_lib3ds(const MeshDataVertexAttribsAllocParams& params,
                                           const char* filename, const char* model_dir,
                                           const char* resource_dir);
/// Kernel::load_model_from_file_obj: the same with the OBJ loader whose name is the current one.
ORV_API Model* load_model_from_file_obj(const MeshDataVertexAttribsAllocParams& params,
                                        const char* filename, const char* model_dir,
                                        const char* resource_dir);
/// Kernel::load_model_from_file_fbx: the same with the first loader plugin named "FBX".
ORV_API Model* load_model_from_file_fbx(const MeshDataVertexAttribsAllocParams& params,
                                        const char* filename, const char* model_dir,
                                        const char* resource_dir);
/// Kernel::compute_object_vertex_color: lights one vertex; false, and `color` untouched, when it
/// cannot.
ORV_API bool compute_object_vertex_color(Object* object, unsigned int vertex_index, vec4& color,
                                         Material* material, Light* light, bool clamp);
/// Kernel::compute_object_vertex_color_v2: the same with transform and position of the light given.
ORV_API bool compute_object_vertex_color_v2(Object* object, const mat4& transform,
                                            unsigned int vertex_index, vec4& color,
                                            Material* material, Light* light,
                                            const vec4& light_position, bool clamp);

/// Loads the module "plugin_orv_vulkan_x64.so" through the plugin search path, once, and
/// initialises its renderer. True when there is one; otherwise what its initialize() returned.
/// A module with another kind of plugin gives false and stays loaded.
ORV_API bool vk_init();
/// vk_init(), then the renderer; null when there is none.
ORV_API Renderer* vk_get_renderer();
/// Terminates and unloads the renderer of vk_init(). Always true.
ORV_API bool vk_cleanup();

/// The matrix from a vertex to the place of its shadow in a shadow map: x and y of
/// `projection` * `view` moved from -1..1 to 0..1, depth left as it is. With `camera_view` the
/// matrix starts from that camera's space. The result goes to `program` as `uniform_name`
/// ("ORV_TextureMatrix" when null) and to `out`, each unless it is null.
ORV_API void shadow_mapping_compute_texture_matrix(const mat4& projection, const mat4& view,
                                                   mat4* camera_view, GpuProgramData* program,
                                                   const char* uniform_name, mat4* out);

}  // namespace aux

}  // namespace orv
