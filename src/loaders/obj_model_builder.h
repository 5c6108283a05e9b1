#pragma once

#include "loaders/obj_document.h"

namespace orv {
class Model;
}  // namespace orv

namespace orv::detail {

/// Makes the materials and the meshes of a document and adds them to the model.
void build_obj_model(ObjDocument& document, Model& model);

}  // namespace orv::detail
