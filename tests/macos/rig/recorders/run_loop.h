#pragma once

#import <Foundation/Foundation.h>

#include <functional>

namespace keyvora::rig {

/// The three modes that the common ones are.
NSArray* commonModes();

/// Calls back on the main thread whenever the file descriptor can be read, in these modes, for the life of
/// the process or until `stopReading`.
void readInModes(int descriptor, NSArray* modes, std::function<void()> readable);
void stopReading(int descriptor);

}  // namespace keyvora::rig
