#pragma once

#include <memory>

#include "hosts/x11/display.h"

namespace keyvora::x11 {

/// Counts the connections that any program opens to the display from now on, however short they are.
class NewClients {
 public:
  NewClients();
  ~NewClients();
  NewClients(const NewClients&) = delete;
  NewClients& operator=(const NewClients&) = delete;

  /// So far as the server has told.
  int count();

 private:
  std::unique_ptr<Connection> control_ = Connection::open("");
  std::unique_ptr<Connection> reports_ = Connection::open("");
  unsigned long context_ = 0;
  int count_ = 0;
};

}  // namespace keyvora::x11
