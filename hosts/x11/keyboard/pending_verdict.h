#pragma once

namespace keyvora::x11 {

/// Lets the keyboard go before the program acts on the target. While a key waits for the tap's verdict the
/// server holds the keyboard back, and an application that wants to open a menu or a dialog just then cannot
/// take it. Whoever posts, presses or runs anything calls this first.
///
/// - On the main thread, inside the tap's handler: the key being decided is swallowed now, whatever the
///   handler returns later, since an action only ever follows a swallowed key. A key typed after that one
///   waits for its turn, unless the action takes longer than a verdict may.
/// - On the main thread, outside it: a key that waits to be shown to the handler goes to its window instead.
/// - On any other thread: waits until the main thread has decided, one second at the most.
///
/// Returns when the server has let the keyboard go; at once when nothing is pending or there is no tap.
void settlePendingVerdict();

}  // namespace keyvora::x11
