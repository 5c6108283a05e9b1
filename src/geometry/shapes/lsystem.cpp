#include "geometry/shapes/lsystem.h"

#include <algorithm>
#include <cmath>

#include "geometry/shapes/lsystem_program.h"
#include "geometry/shapes/par_random.h"

namespace orv::detail {

namespace {

// A program may call itself without ever adding a piece.
constexpr int MAX_CALLS = 1 << 16;
constexpr int MAX_STATEMENTS = 1 << 20;

/// Columns of a frame: its three axes and its origin.
class Frame {
 public:
  void rotate(int first, int second, double degrees) {
    const double radians = degrees * (3.14159265359 / 180.0);
    const double c = std::cos(radians);
    const double s = std::sin(radians);
    for (int i = 0; i < 3; ++i) {
      const double a = axes_[first][i];
      const double b = axes_[second][i];
      axes_[first][i] = c * a + s * b;
      axes_[second][i] = c * b - s * a;
    }
  }
  void translate(int axis, double distance) {
    for (int i = 0; i < 3; ++i) axes_[3][i] += axes_[axis][i] * distance;
  }
  void scale(int axis, double factor) {
    for (double& lane : axes_[axis]) lane *= factor;
  }

  vec3 point(const vec3& p) const { return apply(p, 1.0); }
  /// Normals stay on the side of the piece that they are on.
  vec3 normal(const vec3& n) const {
    vec3 sum;
    sum += cross(axes_[1], axes_[2]) * n.x;
    sum += cross(axes_[2], axes_[0]) * n.y;
    sum += cross(axes_[0], axes_[1]) * n.z;
    if (is_mirrored()) sum = -sum;
    return sum.normalize();
  }
  bool is_mirrored() const {
    const vec3 z(static_cast<float>(axes_[2][0]), static_cast<float>(axes_[2][1]),
                 static_cast<float>(axes_[2][2]));
    return cross(axes_[0], axes_[1]).dot(z) < 0.0f;
  }

 private:
  using Column = double[3];

  vec3 apply(const vec3& p, double w) const {
    float lanes[3];
    for (int i = 0; i < 3; ++i) {
      lanes[i] = static_cast<float>(axes_[0][i] * static_cast<double>(p.x) +
                                    axes_[1][i] * static_cast<double>(p.y) +
                                    axes_[2][i] * static_cast<double>(p.z) + axes_[3][i] * w);
    }
    return vec3(lanes[0], lanes[1], lanes[2]);
  }
  static vec3 cross(const Column& a, const Column& b) {
    return vec3(static_cast<float>(a[1] * b[2] - a[2] * b[1]),
                static_cast<float>(a[2] * b[0] - a[0] * b[2]),
                static_cast<float>(a[0] * b[1] - a[1] * b[0]));
  }

  Column axes_[4] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};
};

bool is_finite(const vec3& v) {
  return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

struct State {
  static constexpr std::uint32_t NO_RING = 0xFFFFFFFFu;

  Frame frame;
  std::uint32_t ring = NO_RING;  ///< first point of the last ring
};

struct Call {
  State state;
  std::uint32_t next;  ///< statement
  std::uint32_t end;
};

class Interpreter {
 public:
  Interpreter(const LSystemProgram& program, const LSystemParams& params, ParShape& shape)
      : program_(program), params_(params), shape_(shape), random_(params.seed) {}

  bool run() {
    if (!make_pieces()) return false;
    if (program_.entry == LSystemProgram::NO_NAME) return true;
    sum_weights();
    call(program_.entry, State());
    for (int done = 0; !stack_.empty() && !full_ && done < MAX_STATEMENTS; ++done) {
      Call& top = stack_.back();
      if (top.next == top.end) {
        stack_.pop_back();
      } else {
        execute(program_.statements[top.next++], top.state);
      }
    }
    return true;
  }

 private:
  bool make_pieces() {
    if (!make_tube(params_.slices, 1, tube_)) return false;
    for (const std::string& name : program_.pieces) {
      ParShape piece;
      if (name == "tube") {
        piece = tube_;
      } else if (make_solid(name, piece)) {
        unweld(piece);
        compute_normals(piece);
        piece.tcoords.assign(piece.points.size(), vec2());
      }
      pieces_.push_back(std::move(piece));
    }
    return true;
  }

  void sum_weights() {
    for (const std::vector<LSystemRule>& rules : program_.rules) {
      std::vector<double>& sums = weight_sums_.emplace_back();
      for (const LSystemRule& rule : rules) {
        sums.push_back(sums.empty() ? rule.weight : sums.back() + rule.weight);
      }
    }
  }

  void execute(const LSystemStatement& statement, State& state) {
    const auto axis_from = [&](LSystemOp first) {
      return static_cast<int>(statement.op) - static_cast<int>(first);
    };
    switch (statement.op) {
      case LSystemOp::CONNECT:
        connect(state);
        break;
      case LSystemOp::SHAPE:
        add_piece(statement.target, state);
        break;
      case LSystemOp::CALL:
        // The state is copied: the stack may move.
        if (stack_.size() <= static_cast<std::size_t>(std::max(params_.max_depth, 0))) {
          call(statement.target, State(state));
        }
        break;
      case LSystemOp::ROTATE_X:
      case LSystemOp::ROTATE_Y:
      case LSystemOp::ROTATE_Z: {
        const int axis = axis_from(LSystemOp::ROTATE_X);
        state.frame.rotate((axis + 1) % 3, (axis + 2) % 3, statement.value);
        break;
      }
      case LSystemOp::TRANSLATE_X:
      case LSystemOp::TRANSLATE_Y:
      case LSystemOp::TRANSLATE_Z:
        state.frame.translate(axis_from(LSystemOp::TRANSLATE_X), statement.value);
        break;
      case LSystemOp::SCALE_X:
      case LSystemOp::SCALE_Y:
      case LSystemOp::SCALE_Z:
        state.frame.scale(axis_from(LSystemOp::SCALE_X), statement.value);
        break;
      case LSystemOp::SCALE_ALL:
        for (int axis = 0; axis < 3; ++axis) state.frame.scale(axis, statement.value);
    }
  }

  void call(std::uint32_t name, const State& state) {
    const std::vector<LSystemRule>& rules = program_.rules[name];
    if (rules.empty()) return;
    if (++calls_ > MAX_CALLS) {
      full_ = true;
      return;
    }
    const LSystemRule& rule = rules.size() == 1 ? rules[0] : pick(rules, weight_sums_[name]);
    stack_.push_back({state, rule.begin, rule.end});
  }

  const LSystemRule& pick(const std::vector<LSystemRule>& rules, const std::vector<double>& sums) {
    const double place = random_.next() * sums.back();
    const auto found = std::upper_bound(sums.begin(), sums.end(), place);
    // All weights may be 0.
    return found == sums.end() ? rules.back()
                               : rules[static_cast<std::size_t>(found - sums.begin())];
  }

  /// Adds the first `n` points of a piece. False, with nothing added, when they don't fit or are
  /// not finite: neither will be what follows, so that the growth is at its end.
  bool add_points(const ParShape& piece, std::size_t n, const Frame& frame, float v_offset) {
    const std::size_t before = shape_.points.size();
    if (before + n > ParShape::MAX_POINTS) full_ = true;
    for (std::size_t i = 0; i < n && !full_; ++i) {
      const vec3 p = frame.point(piece.points[i]);
      const vec3 normal = frame.normal(piece.normals[i]);
      if (!is_finite(p)) full_ = true;
      shape_.points.push_back(p);
      shape_.normals.push_back(is_finite(normal) ? normal : vec3());
      shape_.tcoords.emplace_back(piece.tcoords[i].x, piece.tcoords[i].y + v_offset);
    }
    if (!full_) return true;
    shape_.points.resize(before);
    shape_.normals.resize(before);
    shape_.tcoords.resize(before);
    return false;
  }

  void add_triangle(std::uint32_t a, std::uint32_t b, std::uint32_t c, bool mirrored) {
    if (mirrored) std::swap(b, c);
    shape_.triangles.push_back({a, b, c});
  }

  void add_piece(std::uint32_t index, State& state) {
    const ParShape& piece = pieces_[index];
    if (piece.points.empty()) return;
    const auto first = static_cast<std::uint32_t>(shape_.points.size());
    if (!add_points(piece, piece.points.size(), state.frame, 0.0f)) return;
    const bool mirrored = state.frame.is_mirrored();
    for (const ParShape::Triangle& t : piece.triangles) {
      add_triangle(first + t.a, first + t.b, first + t.c, mirrored);
    }
    if (program_.pieces[index] == "tube") state.ring = first + ring_size();
  }

  void connect(State& state) {
    const auto ring = static_cast<std::uint32_t>(shape_.points.size());
    // The ring at the bottom of a tube, its texture going on from the last one.
    const bool strip = state.ring != State::NO_RING;
    const float v = strip ? shape_.tcoords[state.ring].y + 1.0f : 0.0f;
    if (!add_points(tube_, ring_size(), state.frame, v)) return;
    const bool mirrored = state.frame.is_mirrored();
    for (std::uint32_t j = 0; strip && j + 1 < ring_size(); ++j) {
      add_triangle(state.ring + j, state.ring + j + 1, ring + j, mirrored);
      add_triangle(state.ring + j + 1, ring + j + 1, ring + j, mirrored);
    }
    state.ring = ring;
  }

  std::uint32_t ring_size() const { return static_cast<std::uint32_t>(params_.slices) + 1; }

  const LSystemProgram& program_;
  const LSystemParams& params_;
  ParShape& shape_;
  ParRandom random_;
  ParShape tube_;
  std::vector<ParShape> pieces_;
  std::vector<std::vector<double>> weight_sums_;  // of each name, up to each of its rules
  std::vector<Call> stack_;
  int calls_ = 0;
  bool full_ = false;
};

}  // namespace

bool grow_lsystem(std::string_view text, const LSystemParams& params, ParShape& shape) {
  shape = ParShape();
  const LSystemProgram program = parse_lsystem(text);
  return Interpreter(program, params, shape).run();
}

}  // namespace orv::detail
