/// @file
/// Forward declarations of the public classes and enumerations.
#pragma once

namespace orv {

enum LOG_LEVEL : int;
enum PLUGIN_TYPE : int;
enum NODE_TYPE : int;
enum TRANSFORM_ORDER : int;
enum VERTEX_ATTRIB_TYPE : int;
enum PRIMITIVE_TYPE : int;
enum MESH_FACE_TRIANGLE_TYPE : int;
enum VERTEX_FORMAT : int;
enum MESH_PLANE_BORDER_TYPE : int;
enum LINE_RENDER_MODE : int;
enum GPU_SHADER_TYPE : int;
enum GPU_SHADER_UNIFORM : int;
enum GPU_BUFFER_TYPE : int;
enum BUFFER_OBJECT_USAGE : int;
enum DATA_ACCESS_TYPE : int;
enum TEXTURE_TYPE : int;
enum CUBEMAP_FACE : int;
enum SAMPLER_FILTERING_MODE : int;
enum SAMPLER_ADDRESSING_MODE : int;
enum PIXEL_FORMAT : int;
enum ORV_API3D : int;
enum RENDERER_BLEND_FACTOR : int;
enum ORV_PLATFORM_TYPE : int;
enum PARTICLE_ACTION_TYPE : int;
enum PARTICLE_EMITTER_TYPE : int;

// core
class Kernel;
class Log;
class LogMgr;
class Plugin;
class PluginMgr;
class Thread;
class ThreadLock;
class Timer;

// math
class vec2;
class vec3;
class vec4;
class vec4d;
class vec4i;
class vec2u8;
class vec3u8;
class vec4u8;
class mat4;
class mat4d;
class quat;
class Math;
class BoundingVolume;
class Frustum;
class Ray;

// scene
class Node;
class Object;
class Camera;
class Viewport;
class Light;
class Scene;
class SceneMgr;
class SceneRenderer;
class Model;
class Tripod;
class RayCaster;
class RayObjectIntersection;
struct LightData;

// geometry
class GeometryCore;
class GeometryCoreAllocParams;
class MeshDataVertexAttribsAllocParams;
class VertexAttribArray;
class VertexAttribData;
class Vertex;
class Vertex_32;
class Vertex_64;
class Vertex_PhysXCloth;
class FaceU16;
class FaceU32;
class MaterialSubset;
class MeshData;
class Mesh;
class InstancingInitParams;
class MeshParShape;
class PolylineData;
class PolylineWideLine;
class Polyline;
class Line;
class Curve;
class Circle;
class Sphere;
class Pyramid;
class Bone;
class Box;
class VertexPoolData;
class VertexPool;
class Point;

// gpu
class Resource;
class ResourceMgr;
class GpuProgram;
class GpuProgramData;
class GpuProgramUniform;
class GpuProgramVertexAttrib;
class GpuProgramConstantBuffer;
class GpuProgramModelViewParams;
class GpuProgramMgr;
class GpuBuffer;
class GpuBufferData;
class Texture;
class TextureData;
class TextureArray;
class TextureCubeMapFace;
class TextureSampler;
class TextureMgr;
class Material;
class MaterialMgr;
class GpuRenderTarget;
class GpuRenderTargetDataGL;
class GpuRenderTargetDataD3D12;
class GpuRenderTargetDataVK;

// render
class Renderer;
class RendererNull;
class RendererGpu;
class Renderer_Rasterizer_State;
class GpuPipelineStateData;
class GpuCommandList;
class RenderWindow;
class RenderWindowData;
class OffscreenWindow;
class Window;

// image, text
class Image;
class ImageCodec;
class FontData;
class Font;

// visual
class ParticlePool;
class ParticleEmitter;
class ParticleAction;
class ParticleSystem;
class Graph2d;
class MadLedBar;
class MiniSpline;
class Grid;
class Skybox;
namespace aux {
class Hud;
class TripodVisualizer;
class TripodVisualizerCamera;
class TripodVisualizerObject;
}  // namespace aux

// loaders
class Loader3D;

// services
class SocketCore;
class SockAddr;
class Socket;
class TcpServer;
class TcpServerClientThreadParams;
class AudioData;
class AudioFrame;
class WebcamWin32;
class Keyboard;
class Audio;
class FreeTypeGLPluginInterface;
class OpenCLPlugin;
class SimpleVideo;
class PhysX;
class GpuMonitor;
class gpuTemperature;
class gpuPower;
class gpuBoostv2;
class GPU;

}  // namespace orv
