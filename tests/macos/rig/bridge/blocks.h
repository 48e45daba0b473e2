#pragma once

namespace keyvora::rig::abi {

struct Object;

/// Whether the object is a block.
bool isBlock(const Object* object);

/// Gives the block classes, which the library leaves empty, the methods of a class of ours, so that a block
/// can be sent `retain`, `copy` and `release`. Once, when all classes are known.
void fillBlockClasses(Object* model);

}  // namespace keyvora::rig::abi
