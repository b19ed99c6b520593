//! The crate in the hands of a host, with the real library: the cases that all hosts share, by the
//! names that they have in tests/capi, and what is the crate's own.

mod callback_cases;
mod case_list;
mod check_cases;
mod contract;
mod host;
mod library_cases;
mod load_cases;
mod misuse_cases;
mod panics;
mod plan_cases;
mod product_cases;
mod run_cases;
mod text_cases;
mod trace_cases;
mod wrapper;
