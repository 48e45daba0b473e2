#pragma once

#import <Foundation/Foundation.h>

#include <exception>

#include "hosts/macos/strings.h"

namespace keyvora::macos {

/// Runs a callback's body in an autorelease pool and catches its exceptions: the system's callers do not
/// support them. Returns what `body` returns, or `otherwise` after an exception.
template <class Body, class Result>
Result guarded(Result otherwise, Body body) {
  @autoreleasepool {
    try {
      return body();
    } catch (NSException* exception) {
      NSLog(@"keyvora: exception in a callback: %@", exception.reason);
    } catch (const std::exception& exception) {
      // Not %s, which decodes the bytes as MacRoman.
      NSLog(@"keyvora: exception in a callback: %@", nsString(exception.what()));
    } catch (...) {
      NSLog(@"keyvora: exception in a callback");
    }
    return otherwise;
  }
}

/// The same for a body that returns nothing.
template <class Body>
void guarded(Body body) {
  guarded(0, [&body] {
    body();
    return 0;
  });
}

}  // namespace keyvora::macos
