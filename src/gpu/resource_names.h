#pragma once

namespace orv::detail {

/// Number that grows with each renaming of any resource, so that an index of names knows when it is
/// out of date.
unsigned long long resource_name_epoch();

}  // namespace orv::detail
