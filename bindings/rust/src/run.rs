//! Runs and plans, and who watches them.

use crate::context::Handle;
use crate::error::succeeded;
use crate::panics::Panics;
use crate::records::{Call, Outcome, Step};
use crate::sys::{self, Decision, Mode, Next, Status};
use crate::text::terminated;
use crate::{Error, Result};
use std::cell::RefCell;
use std::ffi::c_void;
use std::ptr;

/// Who watches a run. It is called on the thread of the run, which waits for it.
pub trait Observer {
    /// An action is about to be carried out: `now` tells which, and how far the run has come.
    fn update(&mut self, context: &Handle, now: &Outcome) -> Next {
        let _ = (context, now);
        Next::Continue
    }

    /// A vital action has failed: `now` tells what, on which object, and why. A plan doesn't ask.
    fn ask(&mut self, context: &Handle, now: &Outcome) -> Decision {
        let _ = (context, now);
        Decision::Abort
    }
}

/// Who wants to see every call to the system, and may have a say in those that change something.
pub trait Tracer {
    /// A call has returned. What an observer's questions make the engine do is told, too; what the
    /// tracer's own do isn't.
    fn call(&mut self, context: &Handle, call: &Call) {
        let _ = (context, call);
    }

    /// A call that changes something is about to be made; a stop ends the run before it.
    fn permit(&mut self, context: &Handle, call: &Call) -> Next {
        let _ = (context, call);
        Next::Continue
    }
}

type OnStep<'a> = dyn FnMut(&Handle, &Step) + 'a;

/// A run or a plan that is to be carried out.
#[must_use = "nothing is done before `run` or `plan`"]
pub struct Run<'a> {
    context: &'a Handle,
    mode: Mode,
    observer: Option<&'a mut dyn Observer>,
    tracer: Option<&'a mut dyn Tracer>,
}

impl<'a> Run<'a> {
    /// The context is borrowed for this run alone, though it may be asked meanwhile.
    pub(crate) fn new(context: &'a Handle, mode: Mode) -> Self {
        Run { context, mode, observer: None, tracer: None }
    }

    /// Lets it be watched. Without an observer every failure of a vital action ends a run.
    pub fn observer(mut self, observer: &'a mut dyn Observer) -> Self {
        self.observer = Some(observer);
        self
    }

    /// Lets each call be shown. Without a tracer that costs nothing.
    pub fn tracer(mut self, tracer: &'a mut dyn Tracer) -> Self {
        self.tracer = Some(tracer);
        self
    }

    /// Carries out the script, and returns when that has ended. The context can run again, also in
    /// another mode; variables keep what they were assigned.
    pub fn run(self) -> Result<Outcome> {
        let (context, mode) = (self.context, self.mode);
        // Safe: the context lives, and the record is as large as it says.
        self.watched(None, |_, outcome| unsafe {
            (context.functions.temz_run)(context.raw, mode, outcome)
        })
    }

    /// Does as a run does, but changes nothing on the machine, and tells each step. Some variables,
    /// by name and value, may be assumed to be other than they are.
    ///
    /// It goes on past each failure that a run can go on past. Observer and tracer see it as they
    /// see a run, and can stop it. Its outcome is what a run would have come to whose observer
    /// ignores every failure. Variables are afterwards as they were before.
    pub fn plan(
        self,
        assumptions: &[(&str, &str)],
        mut step: impl FnMut(&Handle, &Step),
    ) -> Result<Outcome> {
        let (context, mode) = (self.context, self.mode);
        let texts = assumptions
            .iter()
            .map(|(name, value)| Ok((terminated(name)?, terminated(value)?)))
            .collect::<Result<Vec<_>>>()?;
        let assumptions: Vec<_> = texts
            .iter()
            .map(|(name, value)| sys::temz_assumption {
                name: name.as_ptr(),
                value: value.as_ptr(),
            })
            .collect();
        self.watched(Some(&mut step), |user, outcome| {
            let planner = sys::temz_planner {
                size: sys::size_of::<sys::temz_planner>(),
                assumption_count: assumptions.len() as u32,
                assumptions: assumptions.as_ptr(),
                user,
                step: Some(step_told),
            };
            // Safe: the context lives, the texts are terminated, and the records as large as they say.
            unsafe { (context.functions.temz_plan)(context.raw, mode, &planner, outcome) }
        })
    }

    fn watched<'b>(
        self,
        step: Option<&'b mut OnStep<'b>>,
        carry_out: impl FnOnce(*mut c_void, *mut sys::temz_outcome) -> Status,
    ) -> Result<Outcome> {
        let context = self.context;
        let traced = self.tracer.is_some();
        let watch = Watch {
            context,
            observer: RefCell::new(self.observer),
            tracer: RefCell::new(self.tracer),
            step: RefCell::new(step),
            panics: Panics::default(),
        };
        let user = &watch as *const Watch as *mut c_void;
        let mut outcome = Outcome::empty();
        let status = {
            let _known = Known::to(context, user, traced)?;
            carry_out(user, &mut outcome.0)
        };
        watch.panics.resume();
        match status {
            Status::RUN_FAILED => Err(Error::RunFailed(Box::new(outcome))),
            Status::STOPPED => Err(Error::Stopped(Box::new(outcome))),
            status => context.explained(status).map(|_| outcome),
        }
    }
}

/// What the callbacks of one run need: what the library hands to them as the user's.
struct Watch<'a, 'b> {
    context: &'a Handle,
    observer: RefCell<Option<&'a mut dyn Observer>>,
    tracer: RefCell<Option<&'a mut dyn Tracer>>,
    step: RefCell<Option<&'b mut OnStep<'b>>>,
    panics: Panics,
}

/// The time for which the library knows who watches.
struct Known<'a>(&'a Handle);

impl<'a> Known<'a> {
    /// Both observer and tracer can end the run, after a panic in any of the callbacks.
    fn to(context: &'a Handle, user: *mut c_void, traced: bool) -> Result<Known<'a>> {
        let known = Known(context);
        let observer = sys::temz_observer {
            size: sys::size_of::<sys::temz_observer>(),
            user,
            update: Some(update),
            ask: Some(ask),
        };
        let tracer = sys::temz_tracer {
            size: sys::size_of::<sys::temz_tracer>(),
            user,
            call: Some(call),
            permit: Some(permit),
        };
        known.set(&observer, if traced { &tracer } else { ptr::null() })?;
        Ok(known)
    }

    fn set(
        &self,
        observer: *const sys::temz_observer,
        tracer: *const sys::temz_tracer,
    ) -> Result<()> {
        let functions = self.0.functions;
        // Safe: the context lives, and the records are as large as they say. What they point to
        // lives as long as `self`, or isn't looked at any more: see below.
        succeeded(unsafe { (functions.temz_set_observer)(self.0.raw, observer) })?;
        succeeded(unsafe { (functions.temz_set_tracer)(self.0.raw, tracer) })
    }
}

/// The library keeps the records where a run on another thread hinders it from forgetting them; but
/// it looks at them in a run of this context alone, before which they are replaced.
impl Drop for Known<'_> {
    fn drop(&mut self) {
        let _ = self.set(ptr::null(), ptr::null());
    }
}

/// # Safety
/// Both are what the library hands to a callback: the watch of the run that goes on, and a record
/// that lives as long as the callback takes.
unsafe fn given<'a, Raw, Record>(
    user: *mut c_void,
    record: *const Raw,
) -> (&'a Watch<'a, 'a>, &'a Record) {
    // Safe: each of the host's records is nothing but the library's.
    unsafe { (&*(user as *const Watch), &*record.cast()) }
}

unsafe extern "C" fn update(user: *mut c_void, now: *const sys::temz_outcome) -> Next {
    // Safe: they are what the library hands to a callback.
    let (watch, now) = unsafe { given(user, now) };
    watch.panics.catch(Next::Stop, || match &mut *watch.observer.borrow_mut() {
        Some(observer) => observer.update(watch.context, now),
        None => Next::Continue,
    })
}

unsafe extern "C" fn ask(user: *mut c_void, now: *const sys::temz_outcome) -> Decision {
    // Safe: they are what the library hands to a callback.
    let (watch, now) = unsafe { given(user, now) };
    watch.panics.catch(Decision::Abort, || match &mut *watch.observer.borrow_mut() {
        Some(observer) => observer.ask(watch.context, now),
        None => Decision::Abort,
    })
}

unsafe extern "C" fn call(user: *mut c_void, call: *const sys::temz_call) {
    // Safe: they are what the library hands to a callback.
    let (watch, call) = unsafe { given(user, call) };
    watch.panics.catch((), || {
        if let Some(tracer) = &mut *watch.tracer.borrow_mut() {
            tracer.call(watch.context, call);
        }
    })
}

unsafe extern "C" fn permit(user: *mut c_void, call: *const sys::temz_call) -> Next {
    // Safe: they are what the library hands to a callback.
    let (watch, call) = unsafe { given(user, call) };
    watch.panics.catch(Next::Stop, || match &mut *watch.tracer.borrow_mut() {
        Some(tracer) => tracer.permit(watch.context, call),
        None => Next::Continue,
    })
}

unsafe extern "C" fn step_told(user: *mut c_void, step: *const sys::temz_step) {
    // Safe: they are what the library hands to a callback.
    let (watch, step) = unsafe { given(user, step) };
    watch.panics.catch((), || {
        if let Some(told) = &mut *watch.step.borrow_mut() {
            told(watch.context, step);
        }
    })
}
