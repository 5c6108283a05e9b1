#pragma once

#include <orv/scene/object.h>

#include <string>
#include <vector>

#include "support/held.h"

namespace orv::test {

/// Tells which operations reached it.
class Witness : public Object {
 public:
  using Object::rotate_vertices_position;
  using Object::set_vertices_color;
  using Object::translate_vertices_position;

  void set_tessellation_state(bool state, Node* node) override {
    note("tessellation", node);
    Object::set_tessellation_state(state, node);
  }
  bool compute_faces_normal(Node* node) override {
    note("faces_normal", node);
    return Object::compute_faces_normal(node);
  }
  bool compute_vertices_normal(Node* node) override {
    note("vertices_normal", node);
    return Object::compute_vertices_normal(node);
  }
  bool average_vertices_normal(float epsilon, Node* node) override {
    note("average", node);
    return Object::average_vertices_normal(epsilon, node);
  }
  void translate_vertices_position(const vec4& v, Node* node) override {
    note("translate4", node);
    Object::translate_vertices_position(v, node);
  }
  void translate_vertices_position(const vec3& v, Node* node) override {
    note("translate3", node);
    Object::translate_vertices_position(v, node);
  }
  void scale_vertices_position(const vec4& v, Node* node) override {
    note("scale", node);
    Object::scale_vertices_position(v, node);
  }
  void rotate_vertices_position(const quat& q, Node* node) override {
    note("rotate_quat", node);
    Object::rotate_vertices_position(q, node);
  }
  void rotate_vertices_position(float x, float y, float z, Node* node) override {
    note("rotate_xyz", node);
    Object::rotate_vertices_position(x, y, z, node);
  }
  void set_vertices_color(const vec4& color, Node* node) override {
    note("color", node);
    last_color = color;
    Object::set_vertices_color(color, node);
  }
  void flip_faces(Node* node) override {
    note("flip_faces", node);
    Object::flip_faces(node);
  }
  void flip_vertex_normals(Node* node) override {
    note("flip_normals", node);
    Object::flip_vertex_normals(node);
  }
  bool bounding_volume_compute(Node* node) override {
    note("volume", node);
    return Object::bounding_volume_compute(node);
  }
  unsigned int get_num_vertices(Node*) override { return vertices; }
  unsigned int get_num_faces(Node*) override { return faces; }

  std::vector<std::string> seen;
  vec4 last_color;
  unsigned int vertices = 0;
  unsigned int faces = 0;

 private:
  void note(const char* name, Node* node) {
    seen.push_back(std::string(name) + (node == this ? "(self)" : node ? "(other)" : "(null)"));
  }
};

/// A parent with a child and a grandchild, and a plain node as another child that has an object
/// below it.
struct Family {
  Family() {
    parent->add_child(child);
    child->add_child(grandchild);
    parent->add_child(plain_node);
    plain_node->add_child(hidden);
  }
  Held<Witness> parent, child, grandchild, hidden;
  Held<Node> plain_node;
};

}  // namespace orv::test
