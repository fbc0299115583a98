#pragma once

#include <memory>

namespace oska {

/// A weak reference to `part`, a member of `owner`, that is valid as long as the owner is referenced. Expired
/// from the beginning when nobody references the owner, as in its destructor. Threads: any.
template <class Owner, class Part>
[[nodiscard]] std::weak_ptr<Part> weakPart(Owner& owner, Part& part) {
    return std::shared_ptr<Part>(owner.weak_from_this().lock(), &part);
}

}  // namespace oska
