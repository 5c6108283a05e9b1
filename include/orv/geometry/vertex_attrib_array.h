/// @file
/// Arrays of one vertex attribute.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

/// One attribute of all vertices: an array of 1 to 4 floats per element, owned by this record.
///
/// The fields are public because renderers read them. Code that writes through one of the typed
/// pointers has to call `update_needed(true)` afterwards; the methods that write do it themselves.
class ORV_API VertexAttribArray {
 public:
  /// Without storage, name and location.
  VertexAttribArray() = default;
  ~VertexAttribArray();
  VertexAttribArray(const VertexAttribArray&) = delete;
  VertexAttribArray& operator=(const VertexAttribArray&) = delete;

  // ---- storage ----

  /// Allocates `n` elements of four components, each (0, 0, 0, 1), and frees what was there.
  /// With `n` 0 the stored count and alignment are used; false when no count is stored either.
  /// `byte_alignment` is in bytes; 0 or less means plain allocation.
  /// Throws std::bad_alloc when the array does not fit in memory or exceeds 2^31 - 1 bytes; the
  /// old contents then stay.
  bool alloc_data(unsigned int n, int byte_alignment);

  /// As alloc_data, with `dim` components. Elements of two and three components start at zero, and
  /// so do those of one component, which are never aligned. `n` 0 falls back to alloc_data. False
  /// for another dimension.
  bool alloc_data_v2(int dim, unsigned int n, int byte_alignment);

  /// Frees the storage and zeroes the description of it. Location, divisor and name stay.
  void free_data();

  /// Forgets the storage without freeing it, which leaves it to whoever holds the pointers.
  /// Location, divisor and name stay.
  void reset();

  /// Copies the bytes, location, divisor and name of `src` and marks the array for upload. False
  /// for a null `src`, for this array itself, and when the byte sizes differ or nothing is
  /// allocated here.
  bool copy(const VertexAttribArray* src);

  // ---- elements ----

  /// Element `i` widened to four components: a missing y or z is 0, a missing w is 1.
  /// (0, 0, 0, 1) when `i` is out of range.
  vec4 get_element_vec4(unsigned int i) const;

  /// Stores as many components as the array has and marks the element for upload. Does nothing
  /// when `i` is out of range.
  void set_element_vec4(unsigned int i, const vec4& v);

  // ---- upload marks ----

  /// Whether anything is marked for upload.
  bool is_update_needed() const { return update_needed_; }

  /// True marks the whole array for upload, false says that the GPU copy is up to date.
  void update_needed(bool state);

  /// Marks the elements `begin` to `end` - 1 for upload.
  void mark_elements(unsigned int begin, unsigned int end);

  /// What the next upload has to send, in elements; both 0 when nothing is marked.
  void get_dirty_elements(unsigned int* begin, unsigned int* end) const;

  // ---- description ----

  /// Copies at most 63 characters; null and "" keep the name.
  void set_name(const char* s);
  /// set_name, and sets the location whatever the name is.
  void set_name_and_loc(const char* s, int loc);
  /// The name, never null; the array's own text.
  const char* get_name() const { return name; }

  /// @{
  /// Location of the attribute in GPU programs, -1 for none.
  int get_location() const { return location; }
  void set_location(int loc);
  /// @}

  /// The same as get_location.
  int get_attrib_location() const { return location; }

  /// @{
  /// Instances per element when drawing instanced; 0 for an attribute per vertex.
  int get_divisor() const { return divisor; }
  void set_divisor(int instances);
  /// @}

  int get_element_dim() const { return element_dim; }    ///< components of an element
  int get_element_size() const { return element_size; }  ///< bytes of an element
  /// Elements allocated.
  int get_num_elements() const { return num_elements; }

  /// Size of the array in bytes.
  unsigned int get_size() const;

  /// @{
  /// First element, null when nothing is allocated; the typed forms are null for arrays of another
  /// dimension. The array stays the owner. Handing a pointer out makes every later upload of this
  /// storage a whole one, since writes through it can't be seen.
  void* get_data_ptr();
  float* get_data_f32_ptr();
  vec2* get_data_vec2_ptr();
  vec3* get_data_vec3_ptr();
  vec4* get_data_vec4_ptr();
  /// @}

  // ---- record ----

  int num_elements = 0;               ///< as allocated
  int element_dim = 0;                ///< 1, 2, 3 or 4; 0 without storage
  int element_size = 0;               ///< `element_dim` * 4 bytes
  unsigned char* raw_data = nullptr;  ///< block that is freed, when aligned
  int location = -1;                  ///< in GPU programs, -1 for none
  int divisor = 0;                    ///< instances per element, 0 for an attribute per vertex
  bool update_needed_ = false;        ///< contents differ from the GPU copy
  int alignment = 0;                  ///< as requested
  char name[64] = {};                 ///< name in GPU programs
  void* data = nullptr;               ///< first element
  vec4* data_vec4 = nullptr;          ///< `data` for arrays of four components, else null
  vec3* data_vec3 = nullptr;          ///< `data` for arrays of three components, else null
  vec2* data_vec2 = nullptr;          ///< `data` for arrays of two components, else null
  float* data_f32 = nullptr;          ///< `data` for arrays of one component, else null

  // ---- bookkeeping between geometry and renderer ----

  unsigned int dirty_begin = 0;  ///< first marked element
  unsigned int dirty_end = 0;    ///< behind the last marked element; 0 when none
  bool whole_dirty = false;      ///< the next upload sends the whole array
  bool raw_shared = false;       ///< a pointer to the storage was handed out
  /// Raised by every mark, for those who keep something made from the contents.
  unsigned int content_serial = 1;
  /// Made by GeometryCore::copy_vertex_attrib_arrays; a renderer passes it over where a lower
  /// array has its location.
  bool copied_from_own = false;
  /// Geometry that owns the array, which is told of marks and of changes of the layout; null for an
  /// array of its own.
  GeometryCore* owner = nullptr;

 private:
  bool allocate(int dim, unsigned int n, int byte_alignment);
  void touch_layout();
  void tell_mark();
};

/// Description of an attribute of two floats.
class ORV_API VertexAttribArray_2f {
 public:
  /// Clears the header.
  void reset();
  int get_element_size() const { return 8; }  ///< bytes

  int num_elements = 0;               ///< elements
  void* data = nullptr;               ///< first element, not owned
  unsigned char* raw_data = nullptr;  ///< block around the elements, not owned
  int location = -1;                  ///< in GPU programs, -1 for none
  char name[64] = {};                 ///< name in GPU programs
};

/// Description of an attribute of three floats.
class ORV_API VertexAttribArray_3f {
 public:
  /// Clears the header.
  void reset();
  int get_element_size() const { return 12; }  ///< bytes

  int num_elements = 0;               ///< elements
  void* data = nullptr;               ///< first element, not owned
  unsigned char* raw_data = nullptr;  ///< block around the elements, not owned
  int location = -1;                  ///< in GPU programs, -1 for none
  char name[64] = {};                 ///< name in GPU programs
};

/// Description of a standard attribute inside the interleaved Vertex.
class ORV_API VertexAttribData {
 public:
  int element_dim = 4;    ///< components
  int element_size = 16;  ///< bytes
  int location = -1;      ///< attribute location in GPU programs
  char name[64] = {};     ///< name in GPU programs
};

}  // namespace orv
