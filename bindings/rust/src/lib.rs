//! Installs, upgrades and removes what a script describes: the crate for `TEMZC.dll`, which lies
//! beside the program.
//!
//! A [`Context`] holds a script. [`Context::prepare`] begins a run or a plan of it, which an
//! [`Observer`] follows and can stop, and a [`Tracer`] sees call by call. A [`Check`] tells what is
//! wrong with a script. The [`sys`] module has the raw declarations; the header `temz.h` documents
//! what the library does.
//!
//! A panic of an observer, a tracer or a closure ends the run and goes on where the run was started.

#![warn(missing_docs, unsafe_op_in_unsafe_fn)]

#[cfg(not(all(windows, target_pointer_width = "64")))]
compile_error!("TEMZ is for 64-bit Windows: build for x86_64-pc-windows-gnu or -msvc.");

mod check;
mod context;
mod error;
mod library;
mod panics;
mod records;
mod run;
pub mod sys;
mod text;

pub use check::{finding_kinds, schema, Check};
pub use context::{Context, Handle};
pub use error::{Error, Result};
pub use library::{library, version, Version};
pub use records::{Action, Call, Failure, Finding, FindingKind, Outcome, Step};
pub use run::{Observer, Run, Tracer};
pub use sys::{Change, Code, Decision, Fate, Mode, Next, Severity, Status, StepKind};
pub use text::Text;
