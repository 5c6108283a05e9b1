/// @file
/// Base class of what the library draws or owns on the GPU.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

/// Class of a node. A constructor pushes its value on the node's type stack, so a box mesh holds
/// node, object, mesh and box.
enum NODE_TYPE : int {
  NODE_TYPE_NODE = 0,               ///< `Node`
  NODE_TYPE_RESOURCE = 1,           ///< `Resource`
  NODE_TYPE_GPU_PROGRAM = 2,        ///< `GpuProgram`
  NODE_TYPE_TEXTURE = 3,            ///< `Texture`
  NODE_TYPE_MATERIAL = 4,           ///< `Material`
  NODE_TYPE_OBJECT = 5,             ///< `Object`
  NODE_TYPE_MESH = 6,               ///< `Mesh`
  NODE_TYPE_MESH_PLANE = 7,         ///< `MeshPlane`
  NODE_TYPE_MESH_QUAD = 8,          ///< `MeshQuad`
  NODE_TYPE_MESH_QUAD_HUD = 9,      ///< `MeshQuadHud`
  NODE_TYPE_MESH_SPHERE = 10,       ///< `MeshSphere`
  NODE_TYPE_MESH_TORUS = 11,        ///< `MeshTorus`
  NODE_TYPE_MESH_PQ_TORUS = 12,     ///< `MeshPQTorus`
  NODE_TYPE_MESH_ELLIPSE = 13,      ///< `MeshEllipse`
  NODE_TYPE_MESH_DISC = 14,         ///< `MeshDisc`
  NODE_TYPE_MESH_TRIANGLE = 15,     ///< `MeshTriangle`
  NODE_TYPE_MESH_BOX = 16,          ///< `MeshBox`
  NODE_TYPE_MESH_BOX_8V = 17,       ///< `MeshBox8v`
  NODE_TYPE_MESH_TERRAIN = 18,      ///< `MeshTerrain`
  NODE_TYPE_MESH_CYLINDER = 19,     ///< `MeshCylinder`
  NODE_TYPE_MESH_RIBBON = 20,       ///< `MeshRibbon`
  NODE_TYPE_MESH_PAR_SHAPE = 21,    ///< `MeshParShape`
  NODE_TYPE_MODEL = 22,             ///< `Model`
  NODE_TYPE_CAMERA = 23,            ///< `Camera`
  NODE_TYPE_FONT = 24,              ///< `Font`
  NODE_TYPE_VERTEX_POOL = 25,       ///< `VertexPool`
  NODE_TYPE_POLYLINE = 26,          ///< `Polyline`
  NODE_TYPE_LINE = 27,              ///< `Line`
  NODE_TYPE_POINT = 28,             ///< `Point`
  NODE_TYPE_MINI_SPLINE = 29,       ///< `MiniSpline`
  NODE_TYPE_SKYBOX = 30,            ///< `Skybox`
  NODE_TYPE_PARTICLE_SYSTEM = 32,   ///< `ParticleSystem`; 31 is used by no class
  NODE_TYPE_PARTICLE_EMITTER = 33,  ///< `ParticleEmitter`
  NODE_TYPE_PARTICLE_ACTION = 34,   ///< `ParticleAction`
  NODE_TYPE_LIGHT = 35,             ///< `Light`
  NODE_TYPE_MAD_LED_BAR = 36,       ///< `MadLedBar`
  NODE_TYPE_WEBCAM = 37,            ///< `WebcamWin32`
  NODE_TYPE_GRAPH2D = 38,           ///< `Graph2d`
  NODE_TYPE_CURVE = 39,             ///< `Curve`
  NODE_TYPE_GRID = 40,              ///< `Grid`
  NODE_TYPE_CIRCLE = 41,            ///< `Circle`
  NODE_TYPE_SPHERE = 42,            ///< `Sphere`
  NODE_TYPE_PYRAMID = 43,           ///< `Pyramid`
  NODE_TYPE_BONE = 44,              ///< `Bone`
  NODE_TYPE_BOX = 45,               ///< `Box`
  NODE_TYPE_GPU_BUFFER = 46,        ///< `GpuBuffer`
};

struct NodeData;

/// A named, counted node of a tree, with an identifier of its own in the process.
///
/// Nodes are made with `new` and end by `release` or `kill`. Public operations walk the tree, and
/// those with a leading underscore do the work of one node. Their `node` argument names the node
/// whose children are walked, null being this one; the work itself is always done on this node.
/// What the workers and the children return isn't looked at by the walks.
///
/// Releasing, removing and finding take trees of any depth. The walks that call a virtual operation
/// on each child go down by the stack of the calling thread, one call a level.
///
/// The tree has no locks: one thread at a time. The order of the virtual operations is a contract
/// with plugins.
class ORV_API Node {
 public:
  /// A node with a fresh identifier, the name "node_" and that number, and a count of 0.
  Node();
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;

  // ---- virtual operations, in their fixed order ----

  /// Frees what the node holds. Parent and children are neither counted nor destroyed; lists that
  /// still hold this node forget it, and nodes whose parent it was have none afterwards.
  virtual ~Node();
  /// `_init` on this node, then `init` on each child. Always true.
  virtual bool init(Renderer* renderer, Node* node);
  /// `cleanup` on each child, then `_cleanup` on this node, whose result it returns.
  virtual bool cleanup(Renderer* renderer, Node* node);
  /// `_update` on this node, then `update` on each child. Always true.
  /// @param dt seconds since the last update
  virtual bool update(float dt, Node* node);
  /// `_build` on this node, then `build` on each child. Always true.
  virtual bool build(Node* node);
  /// `_render` on this node when its render state is on. The children aren't walked.
  virtual void render(Renderer* renderer, Node* node);
  /// Worker of `init`. True.
  virtual bool _init(Renderer* renderer);
  /// Worker of `cleanup`. True.
  virtual bool _cleanup(Renderer* renderer);
  /// Worker of `update`. True.
  virtual bool _update(float dt);
  /// Worker of `build`. True.
  virtual bool _build();
  /// Worker of `render`. Draws nothing.
  virtual void _render(Renderer* renderer);
  /// `release`, with true as its result.
  virtual bool kill(Renderer* renderer, Node* node);
  /// `_cleanup`, then destroys the node, whatever its count. True.
  virtual bool _kill(Renderer* renderer);
  /// Sets the name; null is ignored.
  virtual void set_name(const char* name);
  /// Identifier that the renderer gave, 0 before.
  virtual int get_renderer_id();
  /// Sets the identifier that the renderer gives.
  virtual void set_renderer_id(int id);
  /// Sets whether `render` draws this node. With a node, also each child of that node and all
  /// below.
  virtual void set_render_state(bool state, Node* node);

  // ---- identity ----

  /// Identifier, unique in the process and never changed.
  int get_id() const { return id_; }
  /// The same as `get_id`.
  int getid() const { return id_; }
  /// Name; valid until the next `set_name`.
  const char* get_name() const;
  /// Value that the most derived class pushed.
  NODE_TYPE get_type() const;
  /// Whether any class of this node pushed that value.
  bool is_type_of(NODE_TYPE type) const;

  // ---- reference count ----

  /// Adds one holder.
  void add_ref();
  /// Takes one holder off; never destroys, and may go below 0.
  void remove_ref();
  /// Count of holders. A fresh node has 0.
  int get_ref() const;
  /// Releases the children of `node` (null: of this node), empties that list, then takes one off
  /// this node's count. Returns the count while it is above 0; otherwise the node is cleaned up and
  /// destroyed, and 0 is returned. The list is emptied even when this node lives on.
  int release(Renderer* renderer, Node* node);
  /// The last step of `release`, without the children.
  int _release(Renderer* renderer);

  // ---- tree ----

  /// Sets the parent without entering this node in its list. A node can't stand below itself: such
  /// a parent is refused.
  void set_parent(Node* parent);
  /// The last node that took this one as a child, or null.
  Node* get_parent() const;
  /// Appends a child, counts it and becomes its parent. A node may be a child of several. False for
  /// null, and for a child that stands above this node.
  bool add_child(Node* child);
  /// Takes a child, or a child further down, out of its list, takes one off its count and clears
  /// its parent, without destroying it. Returns the count left; -1 for null or when it isn't below.
  int remove_child(Node* child);
  /// Empties the list; counts and parents of the children stay.
  void clear_children_list();
  /// Number of direct children.
  unsigned int get_num_children() const;
  /// Direct child, or null past the end.
  Node* get_child(unsigned int index) const;
  /// First direct child of that name; then, when `node` isn't null, the first below the children of
  /// `node`. Passing the node itself searches its whole subtree. Null when there is none.
  Node* find_child(const char* name, Node* node) const;
  /// Like the search by name, by identifier.
  Node* find_child(int id, Node* node) const;

  // ---- thread ----

  /// Thread that made the node, or that called `update_thread` last.
  Thread& get_thread();
  /// Thread that made the node, or that called `update_thread` last.
  Thread* get_thread_ptr();
  /// Takes the calling thread as the node's.
  void update_thread();
  /// Whether the calling thread is the node's.
  bool check_thread() const;

  // ---- for the host ----

  /// Stores a pointer of the host's, which the library never reads.
  void set_user_data_ptr(void* data);
  /// The pointer stored, null at first.
  void* get_user_data_ptr() const;
  /// Number of the host's, 0 at first.
  int get_layer() const;
  /// Stores a number of the host's.
  void set_layer(int layer);
  /// Whether `render` draws this node.
  bool get_render_state() const;

 protected:
  /// Pushes a value on the type stack; each constructor pushes that of its class.
  void set_type(NODE_TYPE type);

 private:
  bool stands_below(const Node* other) const;
  // Takes a direct child out of the list. False when it isn't one.
  bool take_child(Node* child) const;

  friend struct NodeData;

  int id_;
  NodeData* data_;
};

}  // namespace orv
