#pragma once

namespace keyvora::rig::abi {

struct Object;

/// Whether the object is a block.
bool isBlock(const Object* object);

/// Copies the methods of a class of the rig to the block classes, which the library leaves without methods,
/// so that a block responds to `retain`, `copy` and `release`. Call it once, when all classes are loaded.
void fillBlockClasses(Object* model);

}  // namespace keyvora::rig::abi
