// The field as a scene graph, built the way that draws it fastest: buffer and vertex array objects,
// no culling and no search for the depth range, which the other sides don't do either.
#include <osg/Geometry>
#include <osg/MatrixTransform>
#include <osg/Program>
#include <osgViewer/Viewer>

#include "cubes.h"

namespace bench {

namespace {

constexpr const char* VERTEX_TEXT = R"(#version 120
varying float light;
void main() {
  light = 0.6 + 0.4 * dot(gl_Normal, vec3(0.48, 0.64, 0.6));
  gl_Position = gl_ModelViewProjectionMatrix * vec4(gl_Vertex.xyz, 1.0);
}
)";
constexpr const char* PIXEL_TEXT = R"(#version 120
varying float light;
uniform vec4 surface_color;
void main() { gl_FragColor = vec4(surface_color.rgb * light, 1.0); }
)";

/// Vectors at a location of the field's mesh.
osg::Vec3Array* read_array(const RawMesh& mesh, GLuint location) {
  osg::ref_ptr<osg::Vec3Array> array = new osg::Vec3Array;
  for (const RawAttrib& attrib : mesh.attribs) {
    if (attrib.location != location) continue;
    const std::size_t stride = attrib.stride != 0 ? static_cast<std::size_t>(attrib.stride)
                                                  : static_cast<std::size_t>(attrib.dim) * 4;
    for (std::size_t i = 0; i < mesh.num_vertices; ++i) {
      const auto* values =
          reinterpret_cast<const float*>(mesh.vertices.data() + attrib.offset + i * stride);
      array->push_back(osg::Vec3(values[0], values[1], values[2]));
    }
  }
  return array.release();
}

osg::DrawElementsUShort* read_indices(const RawMesh& mesh) {
  osg::ref_ptr<osg::DrawElementsUShort> list = new osg::DrawElementsUShort(GL_TRIANGLES);
  for (GLsizei i = 0; i < mesh.num_indices; ++i) {
    const std::size_t size = mesh.index_type == GL_UNSIGNED_SHORT ? 2 : 4;
    const unsigned char* bytes = mesh.indices.data() + static_cast<std::size_t>(i) * size;
    list->push_back(static_cast<GLushort>(bytes[0] + 256 * bytes[1]));
  }
  return list.release();
}

osg::Geometry* make_geometry(const RawMesh& mesh) {
  osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
  geometry->setVertexArray(read_array(mesh, 0));
  geometry->setNormalArray(read_array(mesh, 2), osg::Array::BIND_PER_VERTEX);
  geometry->addPrimitiveSet(read_indices(mesh));
  geometry->setUseDisplayList(false);
  geometry->setUseVertexBufferObjects(true);
  geometry->setUseVertexArrayObject(true);
  return geometry.release();
}

class OsgCubes : public CubeSide {
 public:
  explicit OsgCubes(const CubeField& field)
      : context_(CubeField::WIDTH, CubeField::HEIGHT, RawContext::COMPATIBILITY) {
    osg::ref_ptr<osg::Group> root = new osg::Group;
    osg::ref_ptr<osg::Program> program = new osg::Program;
    program->addShader(new osg::Shader(osg::Shader::VERTEX, VERTEX_TEXT));
    program->addShader(new osg::Shader(osg::Shader::FRAGMENT, PIXEL_TEXT));
    root->getOrCreateStateSet()->setAttributeAndModes(program.get());
    root->getOrCreateStateSet()->setMode(GL_LIGHTING, osg::StateAttribute::OFF);
    root->getOrCreateStateSet()->setMode(GL_DEPTH_TEST, osg::StateAttribute::ON);
    for (std::size_t i = 0; i < field.transforms.size(); ++i) {
      const orv::vec4& color = field.colors[i];
      osg::ref_ptr<osg::MatrixTransform> place =
          new osg::MatrixTransform(osg::Matrixf(field.transforms[i].ptr()));
      osg::ref_ptr<osg::Geometry> geometry = make_geometry(field.cube);
      geometry->getOrCreateStateSet()->addUniform(
          new osg::Uniform("surface_color", osg::Vec4(color.x, color.y, color.z, color.w)));
      place->addChild(geometry.get());
      root->addChild(place.get());
    }
    viewer_.setThreadingModel(osgViewer::Viewer::SingleThreaded);
    viewer_.setUpViewerAsEmbeddedInWindow(0, 0, CubeField::WIDTH, CubeField::HEIGHT);
    osg::Camera* camera = viewer_.getCamera();
    camera->setClearColor(osg::Vec4(0.1f, 0.1f, 0.1f, 1.0f));
    camera->setComputeNearFarMode(osg::CullSettings::DO_NOT_COMPUTE_NEAR_FAR);
    camera->setCullingMode(osg::CullSettings::NO_CULLING);
    camera->setProjectionMatrix(osg::Matrixf(field.projection.ptr()));
    camera->setViewMatrix(osg::Matrixf(field.view.ptr()));
    viewer_.setLightingMode(osg::View::NO_LIGHT);
    viewer_.setSceneData(root.get());
    viewer_.realize();
  }

  void make_current() override { context_.make_current(); }

  void draw() override {
    viewer_.frame();
    raw_gl().glFlush();
  }

 private:
  RawContext context_;
  osgViewer::Viewer viewer_;
};

}  // namespace

std::unique_ptr<CubeSide> make_osg_cubes(const CubeField& field) {
  return std::make_unique<OsgCubes>(field);
}

}  // namespace bench
