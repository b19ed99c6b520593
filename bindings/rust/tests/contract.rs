//! The raw declarations, held against the header, the list of exports, and the layout of the records
//! that C compilers agree on.

use std::collections::{BTreeMap, BTreeSet};
use temz::sys::{self, Functions};
use temz::{Change, Code, Decision, Fate, Mode, Next, Severity, Status, StepKind};

const HEADER: &str = include_str!("../../../capi/temz.h.in");
const LAYOUT: &str = include_str!("../../../tests/capi/Layout.c");
const EXPORTS: &str = include_str!("../../../capi/TEMZC.def");

/// The statuses' names and texts, as the header lists them.
pub fn status_texts() -> Vec<(&'static str, &'static str)> {
    let rows = HEADER.lines().filter_map(|line| line.trim().strip_prefix("STATUS("));
    rows.map(|row| (row.split(',').next().unwrap(), row.split('"').nth(1).unwrap())).collect()
}

/// Every name of the header behind which a comma, an equals sign or a blank and a number stand.
fn constants_of_the_header() -> BTreeMap<String, i64> {
    let mut constants = BTreeMap::new();
    for (start, _) in HEADER.match_indices("TEMZ_") {
        let in_name = |c: char| c.is_ascii_uppercase() || c.is_ascii_digit() || c == '_';
        let (name, rest) = split_where(&HEADER[start..], |c| !in_name(c));
        let rest = rest.trim_start_matches(|c| c == ' ' || c == ',' || c == '=');
        let (digits, _) = split_where(rest, |c| !c.is_ascii_digit());
        if let Ok(number) = digits.parse() {
            constants.insert(name.to_string(), number);
        }
    }
    constants
}

fn split_where(text: &str, end: impl Fn(char) -> bool) -> (&str, &str) {
    text.split_at(text.find(end).unwrap_or(text.len()))
}

#[test]
fn constants_are_those_of_the_header() {
    let mut constants = BTreeMap::from([("TEMZ_TEXT_LENGTH".to_string(), sys::TEXT_LENGTH as i64)]);
    let mut add = |name: &str, number: i64| {
        let before = constants.insert(name.to_uppercase(), number);
        assert_eq!(before, None, "{} is there twice.", name);
    };
    Status::ALL.iter().for_each(|(name, status)| add(name, status.0.into()));
    Mode::ALL.iter().for_each(|(name, mode)| add(name, *mode as i64));
    Next::ALL.iter().for_each(|(name, next)| add(name, *next as i64));
    Decision::ALL.iter().for_each(|(name, decision)| add(name, *decision as i64));
    Code::ALL.iter().for_each(|(name, code)| add(name, code.0.into()));
    Severity::ALL.iter().for_each(|(name, severity)| add(name, severity.0.into()));
    StepKind::ALL.iter().for_each(|(name, kind)| add(name, kind.0.into()));
    Change::ALL.iter().for_each(|(name, change)| add(name, change.0.into()));
    Fate::ALL.iter().for_each(|(name, fate)| add(name, fate.0.into()));
    assert_eq!(constants, constants_of_the_header());
}

/// A row of the list: the record, the field if there is one, and two numbers.
fn rows_of_layout(macro_name: &str) -> BTreeSet<(String, Option<String>, usize, usize)> {
    LAYOUT
        .lines()
        .filter_map(|line| {
            let row = line.trim().strip_prefix(macro_name)?.strip_prefix('(')?;
            let words: Vec<_> = row.split(')').next()?.split(", ").collect();
            let (names, numbers) = words.split_at(words.len().checked_sub(2)?);
            let field = names.get(1).map(|name| name.to_string());
            let (first, second) = (numbers[0].parse().ok()?, numbers[1].parse().ok()?);
            Some((names.first()?.to_string(), field, first, second))
        })
        .collect()
}

#[test]
fn records_lie_as_in_c() {
    let (records, fields): (BTreeSet<_>, BTreeSet<_>) = sys::layout()
        .into_iter()
        .map(|(record, field, first, second)| {
            (record.to_string(), field.map(str::to_string), first, second)
        })
        .partition(|row| row.1.is_none());
    assert!(fields.len() > 70 && records.len() > 10);
    assert_eq!(fields, rows_of_layout("RECORD_FIELD"));
    assert_eq!(records, rows_of_layout("RECORD"));
}

#[test]
fn functions_are_those_that_the_library_exports() {
    let exports: BTreeSet<_> = EXPORTS.lines().skip(2).map(str::trim).collect();
    assert_eq!(Functions::NAMES.iter().copied().collect::<BTreeSet<_>>(), exports);
}

#[test]
fn missing_function_is_named() {
    // Safe: nothing is called.
    let bound = unsafe {
        Functions::bind(|name| (name.to_str() != Ok("temz_plan")).then_some(nothing as _))
    };
    assert_eq!(bound.err(), Some("temz_plan"));
}

unsafe extern "C" fn nothing() {}
