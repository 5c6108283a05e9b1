// Picking in meshes of a million triangles: the first ray beside the plain walk through all faces,
// later rays and the search tree beside Embree on one thread.
#include <benchmark/benchmark.h>
#include <embree3/rtcore.h>
#include <orv/core/core.h>
#include <orv/geometry/mesh.h>
#include <orv/geometry/mesh_data.h>
#include <orv/math/math.h>
#include <orv/math/ray.h>
#include <orv/scene/ray_caster.h>
#include <orv/scene/ray_object_intersection.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using orv::Ray;
using orv::vec4;

constexpr int NUM_RAYS = 2000;

[[noreturn]] void give_up(const std::string& reason) {
  std::fprintf(stderr, "%s\n", reason.c_str());
  std::exit(1);
}

/// A wavy torus of a million triangles, turned and moved; `noise` shakes each vertex, as a share of
/// the edges, so that normals differ from triangle to triangle.
class Target {
 public:
  explicit Target(float noise) : mesh_(new orv::Mesh) {
    mesh_->add_ref();
    mesh_->set_vertex_alloc_params_num_vertices((SIDE + 1) * (SIDE + 1));
    if (!mesh_->alloc_vertex_data() || !mesh_->alloc_face_data(SIDE * SIDE * 2, true)) {
      give_up("no memory for the mesh");
    }
    place_vertices(noise / static_cast<float>(SIDE));
    unsigned int face = 0;
    for (unsigned int j = 0; j < SIDE; ++j) {
      for (unsigned int i = 0; i < SIDE; ++i) {
        const unsigned int a = j * (SIDE + 1) + i;
        const unsigned int c = a + SIDE + 1;
        data().set_face_indices(face++, a, c, a + 1);
        data().set_face_indices(face++, a + 1, c, c + 1);
      }
    }
    mesh_->set_orientation_euler_xyz(20.0f, 30.0f, 40.0f);
    mesh_->set_position(0.1f, -0.2f, 0.3f);
    aim_rays();
  }
  ~Target() { mesh_->release(nullptr, nullptr); }
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;

  orv::Mesh& mesh() { return *mesh_; }
  orv::MeshData& data() { return *mesh_->get_mesh_data(); }
  const std::vector<Ray>& rays() const { return rays_; }

  /// As after an edit: what was remembered of the geometry is worth nothing any more.
  void mark_changed() { data().get_vertex_attrib_array(0)->update_needed(true); }

  orv::RayObjectIntersection cast(const Ray& ray) {
    orv::RayObjectIntersection result;
    orv::RayCaster::cast_ray_object_v2(ray, mesh_, result, false);
    return result;
  }

 private:
  static constexpr unsigned int SIDE = 708;  // 1,002,528 triangles

  float random(float from, float to) {
    return std::uniform_real_distribution<float>(from, to)(generator_);
  }

  void place_vertices(float shake) {
    unsigned int vertex = 0;
    for (unsigned int j = 0; j <= SIDE; ++j) {
      for (unsigned int i = 0; i <= SIDE; ++i) {
        const float a = 6.2831853f * static_cast<float>(i) / SIDE;
        const float b = 6.2831853f * static_cast<float>(j) / SIDE;
        const float tube = 0.4f + 0.04f * std::sin(9.0f * a) * std::cos(5.0f * b);
        const float ring = 1.0f + tube * std::cos(b);
        data().set_position(vertex++, vec4(ring * std::cos(a) + random(-shake, shake),
                                           tube * std::sin(b) + random(-shake, shake),
                                           ring * std::sin(a) + random(-shake, shake)));
      }
    }
  }

  void aim_rays() {
    for (int i = 0; i < NUM_RAYS; ++i) {
      const vec4 from(random(-3, 3), random(-3, 3), random(-3, 3));
      vec4 way = vec4(random(-1, 1), random(-1, 1), random(-1, 1)) - from;
      way.normalize();
      rays_.emplace_back(from, way);
    }
  }

  orv::Mesh* mesh_;
  std::mt19937 generator_{5};
  std::vector<Ray> rays_;
};

/// Each face in its turn: its corners are asked for, transformed and tested.
orv::RayObjectIntersection walk_plainly(const Ray& ray, Target& target) {
  orv::RayObjectIntersection result;
  orv::GeometryCore& data = target.data();
  const orv::mat4 m = target.mesh().get_absolute_transform();
  result.distance = 1e13f;
  for (unsigned int i = 0; i < data.num_faces; ++i) {
    const orv::FaceU32& face = data.faces_u32[i];
    const vec4 a = m * vec4(data.get_position(face.a));
    const vec4 b = m * vec4(data.get_position(face.b));
    const vec4 c = m * vec4(data.get_position(face.c));
    float t = 0.0f;
    if (!orv::Math::ray_triangle_intersection(ray.origin, ray.direction, a, b, c, &t)) continue;
    if (t <= 0.0f || t >= result.distance) continue;
    result.distance = t;
    result.face = i;
    result.intersected = true;
  }
  if (!result.intersected) return result;
  result.point.x = ray.origin.x + ray.direction.x * result.distance;
  result.point.y = ray.origin.y + ray.direction.y * result.distance;
  result.point.z = ray.origin.z + ray.direction.z * result.distance;
  return result;
}

/// The same triangles in world space, searched by Embree.
class EmbreeScene {
 public:
  explicit EmbreeScene(Target& target) : device_(rtcNewDevice("threads=1")) {
    if (!device_) give_up("no Embree device");
    const orv::mat4 m = target.mesh().get_absolute_transform();
    orv::MeshData& data = target.data();
    for (unsigned int i = 0; i < data.num_vertices; ++i) {
      vertices_.push_back(m * vec4(data.get_position(i)));
    }
    faces_.assign(data.faces_u32, data.faces_u32 + data.num_faces);
  }
  ~EmbreeScene() {
    drop();
    rtcReleaseDevice(device_);
  }
  EmbreeScene(const EmbreeScene&) = delete;
  EmbreeScene& operator=(const EmbreeScene&) = delete;

  void build() {
    scene_ = rtcNewScene(device_);
    RTCGeometry geometry = rtcNewGeometry(device_, RTC_GEOMETRY_TYPE_TRIANGLE);
    rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3,
                               vertices_.data(), 0, sizeof(vec4), vertices_.size());
    rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, faces_.data(),
                               0, sizeof(orv::FaceU32), faces_.size());
    rtcCommitGeometry(geometry);
    rtcAttachGeometry(scene_, geometry);
    rtcReleaseGeometry(geometry);
    rtcCommitScene(scene_);
  }
  void drop() {
    if (scene_) rtcReleaseScene(scene_);
    scene_ = nullptr;
  }

  /// Distance of the nearest face; infinity when none is hit.
  float cast(const Ray& ray) const {
    RTCRayHit query = {};
    query.ray.org_x = ray.origin.x;
    query.ray.org_y = ray.origin.y;
    query.ray.org_z = ray.origin.z;
    query.ray.dir_x = ray.direction.x;
    query.ray.dir_y = ray.direction.y;
    query.ray.dir_z = ray.direction.z;
    query.ray.tfar = std::numeric_limits<float>::infinity();
    query.ray.mask = ~0u;
    query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    rtcIntersect1(scene_, &context, &query);
    return query.ray.tfar;
  }

 private:
  RTCDevice device_;
  RTCScene scene_ = nullptr;
  std::vector<vec4> vertices_;
  std::vector<orv::FaceU32> faces_;
};

bool same(const orv::RayObjectIntersection& a, const orv::RayObjectIntersection& b) {
  return a.intersected == b.intersected && a.face == b.face &&
         std::memcmp(&a.distance, &b.distance, sizeof(float)) == 0 &&
         std::memcmp(&a.point, &b.point, sizeof(vec4)) == 0;
}

/// Walk and search must agree to the bit; Embree may judge edges otherwise.
void check_answers(Target& target, const EmbreeScene& embree) {
  int hits = 0;
  int others = 0;
  for (int i = 0; i < NUM_RAYS; ++i) {
    const Ray& ray = target.rays()[static_cast<std::size_t>(i)];
    const auto found = target.cast(ray);
    if (i < 50 && !same(found, walk_plainly(ray, target))) give_up("the walk finds another face");
    const float peer = embree.cast(ray);
    const bool alike =
        found.intersected ? std::fabs(peer - found.distance) < 1e-4f : !std::isfinite(peer);
    hits += found.intersected ? 1 : 0;
    others += alike ? 0 : 1;
  }
  if (hits < NUM_RAYS / 4) give_up("the rays miss the mesh");
  if (others > NUM_RAYS / 200) give_up("Embree finds other faces: " + std::to_string(others));
}

struct Pair {
  Target target;
  EmbreeScene embree;

  explicit Pair(float noise) : target(noise), embree(target) {
    embree.build();
    check_answers(target, embree);
  }
  const Ray& ray(std::size_t* next) const { return target.rays()[(*next)++ % NUM_RAYS]; }
};

void first_ray_ours(benchmark::State& state, Pair* pair) {
  std::size_t next = 0;
  for (auto _ : state) {
    pair->target.mark_changed();
    benchmark::DoNotOptimize(pair->target.cast(pair->ray(&next)));
  }
}

void first_ray_plain(benchmark::State& state, Pair* pair) {
  std::size_t next = 0;
  for (auto _ : state) benchmark::DoNotOptimize(walk_plainly(pair->ray(&next), pair->target));
}

void later_rays_ours(benchmark::State& state, Pair* pair) {
  for (const Ray& ray : pair->target.rays()) pair->target.cast(ray);
  for (auto _ : state) {
    for (const Ray& ray : pair->target.rays()) benchmark::DoNotOptimize(pair->target.cast(ray));
  }
}

void later_rays_embree(benchmark::State& state, Pair* pair) {
  for (auto _ : state) {
    for (const Ray& ray : pair->target.rays()) benchmark::DoNotOptimize(pair->embree.cast(ray));
  }
}

/// Spent by this process, in all its threads.
double cpu_seconds() {
  timespec time;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

void report_seconds(benchmark::State& state, double seconds) {
  state.counters["seconds"] = benchmark::Counter(seconds, benchmark::Counter::kAvgIterations);
}

/// The second ray after a change makes the tree. Enough rays follow to make the tree pay, since a
/// mesh whose trees don't is walked instead.
void build_ours(benchmark::State& state, Pair* pair) {
  std::size_t next = 0;
  double seconds = 0.0;
  for (auto _ : state) {
    pair->target.mark_changed();
    pair->target.cast(pair->ray(&next));
    const double start = cpu_seconds();
    benchmark::DoNotOptimize(pair->target.cast(pair->ray(&next)));
    seconds += cpu_seconds() - start;
    for (int i = 0; i < 64; ++i) pair->target.cast(pair->ray(&next));
  }
  report_seconds(state, seconds);
}

void build_embree(benchmark::State& state, Pair* pair) {
  double seconds = 0.0;
  for (auto _ : state) {
    pair->embree.drop();
    const double start = cpu_seconds();
    pair->embree.build();
    seconds += cpu_seconds() - start;
  }
  report_seconds(state, seconds);
}

using Run = void (*)(benchmark::State&, Pair*);

benchmark::internal::Benchmark* add(const std::string& name, Run run, Pair* pair) {
  return benchmark::RegisterBenchmark(name.c_str(), run, pair)->Unit(benchmark::kMillisecond);
}

void add_roads(const std::string& surface, Pair* pair) {
  const std::string at = " at 1 M triangles, " + surface;
  add("first ray" + at + "/ours", first_ray_ours, pair);
  add("first ray" + at + "/plain walk", first_ray_plain, pair);
  add("2000 later rays" + at + "/ours", later_rays_ours, pair);
  add("2000 later rays" + at + "/Embree", later_rays_embree, pair);
  add("search tree" + at + "/ours", build_ours, pair);
  add("search tree" + at + "/Embree", build_embree, pair);
}

}  // namespace

int main(int argc, char** argv) {
  orv::core::start(nullptr, false, nullptr, nullptr);
  {
    Pair smooth(0.0f);
    Pair rough(1.0f);
    add_roads("smooth", &smooth);
    add_roads("rough", &rough);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
  }
  orv::core::stop(nullptr);
  return 0;
}
