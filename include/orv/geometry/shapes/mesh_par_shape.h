/// @file
/// Meshes from a generator of shapes.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/mesh.h>

namespace orv {

struct MeshParShapeData;

/// A mesh that a generator makes, by the name of a shape:
///
/// - "tetrahedron", "octohedron" (so spelled), "dodecahedron", "icosahedron": platonic solid with
///   its corners on the unit sphere and flat normals
/// - "cube": from -0.5 to 0.5 on each axis, flat normals
/// - "subdivided_sphere": unit sphere made of an icosahedron, 6 subdivisions at most
/// - "sphere": unit sphere with its poles on Z, by slices round and stacks along the axis, 3 at
///   least
/// - "trefoil_knot": tube of radius 0.35 round a trefoil, by slices round and stacks along the
///   tube, 3 at least
/// - "klein_bottle": the immersion with a figure-eight profile, radius 2, by slices and stacks, 1
///   at least. It has one side only: at one seam the normals turn over.
/// - "rock": subdivided sphere with noise, cut flat at y -0.4. The same seed gives the same rock.
/// - "lsystem": what a program grows, see set_build_params_lsystem
///
/// Sphere, knot and bottle have texture coordinates from 0 to 1 over a grid of (slices + 1) *
/// (stacks + 1) vertices. A shape has 65536 vertices at most; a knot, bottle or sphere of more is
/// refused. All vertices are white; normals have w 0.
///
/// Setters of parameters choose no shape. Built by the next build after a change of the parameters;
/// set_shape_type alone does not make the mesh due.
class ORV_API MeshParShape : public Mesh {
 public:
  /// Characters of the name that count.
  static constexpr unsigned int MAX_SHAPE_TYPE = 63;

  /// A trefoil knot of 4 slices and 4 stacks.
  MeshParShape();
  /// Has data of its own for VERTEX_FORMAT_DEFAULT and none for any other format.
  explicit MeshParShape(VERTEX_FORMAT format);
  ~MeshParShape() override;
  /// A new node that shares the geometry.
  MeshParShape(const MeshParShape& other);
  /// Shares the geometry of the other and takes over its parameters.
  MeshParShape& operator=(const MeshParShape& other);

  /// Chooses the shape by name, of which 63 characters count. False, with the old name kept, for
  /// null and "".
  bool set_shape_type(const char* name);
  /// Valid until the next change.
  const char* get_shape_type() const;

  /// @{
  /// True.
  bool set_build_params_klein_bottle(int slices, int stacks);
  bool set_build_params_parametric_sphere(int slices, int stacks);
  bool set_build_params_trefoil_knot(int slices, int stacks);
  bool set_build_params_subdivided_sphere(int num_subdivisions);
  bool set_build_params_rock(int seed, int num_subdivisions);
  /// @}

  /// Parameters of a shape grown by a text program; true.
  ///
  /// Words are parted by blanks and line ends.
  /// - "rule NAME" begins a rule. What stands before the first one is the rule "entry", where the
  ///   growth starts.
  /// - "call NAME" runs a rule of that name on a copy of the state, unless the depth is reached. Of
  ///   several rules of one name, NAME.N is taken with the weight N (1 without), by the seed.
  /// - "rx", "ry", "rz" turn the frame by degrees, "tx", "ty", "tz" move it, "sx", "sy", "sz" and
  ///   "sa" (all axes) scale it, each followed by a number: "15", "-15" or "- 15".
  /// - "shape tube" adds an open cylinder of radius 1 from z 0 to 1, "shape connect" a ring at the
  ///   frame that is joined to the last ring, "shape NAME" one of the solids.
  /// - Other words are passed over.
  ///
  /// Growth ends, with what there is, at 65536 vertices and after 65536 calls. A program that ends
  /// within a statement is reported on the standard output.
  /// @param slices   sides of tubes and rings
  /// @param depth    calls within calls
  /// @param program  copied; null and "" stand for the built-in program
  bool set_build_params_lsystem(int slices, int depth, const char* program);

  int get_slices() const;            ///< 4 at first
  int get_stacks() const;            ///< 4 at first
  int get_seed() const;              ///< 1 at first
  int get_num_subdivisions() const;  ///< 3 at first
  int get_lsystem_slices() const;    ///< the depth of programs, 60 at first
  /// The program to be run, the built-in one at first. Valid until the next change.
  const char* get_lsystem_program() const;
  /// The program that is run where none is given.
  static const char* get_default_lsystem_program();

  /// Builds this mesh alone, not its children. False for an unknown name and for parameters that
  /// the shape refuses, the old geometry being kept, and when memory is short.
  bool build(Node* node) override;
  bool _build() override;
  /// Replaces the geometry by the shape, whether it is due or not. False as for build.
  bool build_shape();

 private:
  MeshParShapeData* par_data_;
};

}  // namespace orv
