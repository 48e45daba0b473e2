#pragma once

#import <Foundation/Foundation.h>
#import <objc/runtime.h>

#include <cstdio>
#include <cstdlib>

namespace keyvora::rig {

/// Puts a function without captures in the place of an instance method and returns what was there. Once all
/// classes are known.
template <class Function>
IMP replace(Class type, SEL selector, Function function) {
  Method method = class_getInstanceMethod(type, selector);
  if (method == nullptr) {
    std::fprintf(stderr, "no method %s to replace in %s\n", sel_getName(selector), class_getName(type));
    std::abort();
  }
  // The lambda as the plain function that it is.
  return method_setImplementation(method, reinterpret_cast<IMP>(+function));
}

/// The same for a class method.
template <class Function>
IMP replaceClassMethod(Class type, SEL selector, Function function) {
  return replace(object_getClass((id)type), selector, function);
}

/// Each replaces what GNUstep does otherwise than a Mac. Called once, by the start.
void recordApplication();
void recordTimers();
void replaceBundles();
void replaceStrings();

}  // namespace keyvora::rig
