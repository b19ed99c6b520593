#pragma once

#include "Abi.h"

#include <cstdint>

class IterfaceProduct;
struct ErrorInfo;

/// What the host answers when a vital action has failed. Any other value acts as ANSWER_RETRY when
/// the same action has been retried before, and as ANSWER_ABORT otherwise.
enum ObserverAnswer : int32_t {
    ANSWER_RETRY = 0,   ///< carry the action out once more; there is no limit and no delay
    ANSWER_ABORT = 1,   ///< end the run with the action's result
    ANSWER_IGNORE = 2,  ///< go on with the next element as if the action had succeeded
};

/// Implemented by the host, which stores the object in IterfaceProduct::observer and owns it. Both
/// operations are called on the thread that called IterfaceProduct::run, which waits for them, so
/// the members of the product may be read freely. Neither may throw, since the engine
/// catches nothing that leaves an observer, nor call load, unload or run, whose script is at work.
class IterfaceObserver {
public:
    /// An action is about to be carried out: `product->actionInfo` tells which, and
    /// `product->progress` how far the run has come.
    virtual void update(IterfaceProduct* product) = 0;

    /// A vital action has failed. `error` is the product's `errorInfo`: what failed, on which
    /// object, and why. It stays the product's and is overwritten by the next action.
    virtual ObserverAnswer askOnError(ErrorInfo* error) = 0;

protected:
    ~IterfaceObserver() = default;
};
