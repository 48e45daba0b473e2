#pragma once

#import <Foundation/Foundation.h>

#include <functional>

namespace keyvora::rig {

/// The three modes that make up the common modes.
NSArray* commonModes();

/// Calls back on the main thread whenever the file descriptor is readable, in these modes, until
/// `stopReading`.
void readInModes(int descriptor, NSArray* modes, std::function<void()> readable);
void stopReading(int descriptor);

}  // namespace keyvora::rig
