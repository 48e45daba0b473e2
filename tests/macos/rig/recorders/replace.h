#pragma once

#import <Foundation/Foundation.h>
#import <objc/runtime.h>

#include <cstdio>
#include <cstdlib>

namespace keyvora::rig {

/// Replaces an instance method by a function without captures and returns the old implementation. Call it
/// when all classes are loaded.
template <class Function>
IMP replace(Class type, SEL selector, Function function) {
  Method method = class_getInstanceMethod(type, selector);
  if (method == nullptr) {
    std::fprintf(stderr, "no method %s to replace in %s\n", sel_getName(selector), class_getName(type));
    std::abort();
  }
  // The lambda as a plain function.
  return method_setImplementation(method, reinterpret_cast<IMP>(+function));
}

/// The same for a class method.
template <class Function>
IMP replaceClassMethod(Class type, SEL selector, Function function) {
  return replace(object_getClass((id)type), selector, function);
}

/// Each function replaces behaviour in which GNUstep differs from a Mac. Called once, at the start.
void recordApplication();
void recordTimers();
void replaceBundles();
void replaceStrings();

}  // namespace keyvora::rig
