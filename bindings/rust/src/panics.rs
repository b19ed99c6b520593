//! Panics of the host's code, which must not pass through the library.

use std::any::Any;
use std::cell::RefCell;
use std::panic::{catch_unwind, resume_unwind, AssertUnwindSafe};

/// The panics of the callbacks of one call to the library: of one, and of those that it was called
/// from. Once there is one, no callback is called any more.
#[derive(Default)]
pub(crate) struct Panics(RefCell<Vec<Box<dyn Any + Send>>>);

impl Panics {
    /// What `callback` answers, or `end`, once it or another has panicked.
    pub(crate) fn catch<Answer>(&self, end: Answer, callback: impl FnOnce() -> Answer) -> Answer {
        if !self.0.borrow().is_empty() {
            return end;
        }
        // What the host's code leaves half-done is seen by nobody before the panic goes on.
        catch_unwind(AssertUnwindSafe(callback)).unwrap_or_else(|panic| {
            self.0.borrow_mut().push(panic);
            end
        })
    }

    /// Lets the first panic go on, if there was one.
    pub(crate) fn resume(self) {
        if let Some(panic) = self.0.into_inner().into_iter().next() {
            resume_unwind(panic);
        }
    }
}
