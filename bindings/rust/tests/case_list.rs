//! The list of cases that hosts of all languages share, held against the tests of this program.

use std::collections::BTreeSet;
use std::env;
use std::process::Command;

/// Cases that this language makes impossible, and by what.
const IMPOSSIBLE: &[(&str, &str)] = &[
    ("lengthAloneCanBeAsked", "texts come as strings, whose length is theirs"),
    ("smallBufferIsLeftAsItIs", "texts come as strings, in buffers of the crate's own"),
    ("textsWithoutLengthCanBeAsked", "texts come as strings, in buffers of the crate's own"),
    ("nullContextIsTold", "a Context is never null"),
    ("freedContextIsTold", "what is dropped can't be used: refused/freed_context.rs"),
    ("garbageIsNoContext", "a Context comes from the library"),
    ("nullArgumentsAreTold", "references are never null"),
    ("anyOtherAnswerEndsTheRun", "an answer is one of an enum"),
    ("anyOtherPermitIsARefusal", "an answer is one of an enum"),
    ("smallerRecordsAreRefused", "the crate fills the sizes in"),
    ("largerRecordsAreServed", "the crate fills the sizes in"),
    ("runGoesOnWithTheObserverItBeganWith", "an observer is given to its run, and no other"),
    ("runGoesOnWithTheTracerItBeganWith", "a tracer is given to its run, and no other"),
    ("tracerWithNeitherFunctionIsRefused", "a Tracer has both functions"),
    ("misusedChecksAreTold", "a Check has a script, and its run a closure"),
    ("planNeedsNeitherPlannerNorOutcome", "a plan is given a closure and gives its outcome"),
];

/// "caseOfThisName" as this language would have it.
fn in_snake_case(name: &str) -> String {
    let mut snake = String::new();
    for c in name.chars() {
        if c.is_ascii_uppercase() {
            snake.push('_');
        }
        snake.push(c.to_ascii_lowercase());
    }
    snake
}

fn shared_cases() -> Vec<&'static str> {
    include_str!("../../../tests/capi/Cases.h")
        .lines()
        .filter_map(|line| line.trim().strip_prefix("CASE(")?.split(')').next())
        .collect()
}

/// The names of the tests in this program, without those of their modules.
fn own_tests() -> BTreeSet<String> {
    let list = Command::new(env::current_exe().unwrap()).arg("--list").output().unwrap().stdout;
    String::from_utf8(list)
        .unwrap()
        .lines()
        .filter_map(|line| line.strip_suffix(": test")?.rsplit("::").next())
        .map(str::to_string)
        .collect()
}

#[test]
fn each_shared_case_is_a_test_or_impossible() {
    let tests = own_tests();
    let cases = shared_cases();
    assert!(cases.len() > 70, "{:?}", cases);
    for case in &cases {
        let impossible = IMPOSSIBLE.iter().any(|(name, _)| name == case);
        let tested = tests.contains(&in_snake_case(case));
        assert!(tested != impossible, "{} is tested: {}", case, tested);
    }
    for (name, _) in IMPOSSIBLE {
        assert!(cases.contains(name), "{} is no case.", name);
    }
}
