//go:build windows && amd64

package temz

import (
	"os"
	"path/filepath"
	"reflect"
	"regexp"
	"strconv"
	"strings"
	"testing"
)

// What must be as it is elsewhere in the tree.

// findAll gives what an expression finds in a file of the tree.
func findAll(t *testing.T, path, expression string) [][]string {
	t.Helper()
	text, err := os.ReadFile(filepath.Join(sources, filepath.FromSlash(path)))
	if err != nil {
		t.Fatal(err)
	}
	return regexp.MustCompile(expression).FindAllStringSubmatch(string(text), -1)
}

func number(t *testing.T, text string) uintptr {
	t.Helper()
	value, err := strconv.Atoi(text)
	if err != nil {
		t.Fatal(err)
	}
	return uintptr(value)
}

// The cases that every host goes through and this one can't.
var impossible = map[string]string{
	"lengthAloneCanBeAsked":        "the buffers are the package's: TestTextsOfAnyLengthComeWhole",
	"exactBufferIsFilled":          "the buffers are the package's: TestTextsOfAnyLengthComeWhole",
	"smallBufferIsLeftAsItIs":      "the buffers are the package's: TestTextsOfAnyLengthComeWhole",
	"textsWithoutLengthCanBeAsked": "the buffers are the package's: TestTextsOfAnyLengthComeWhole",
	"emptyTextNeedsItsTerminator":  "the buffers are the package's: TestTextsOfAnyLengthComeWhole",
	"garbageIsNoContext":           "an Engine's context can't be reached",
	"smallerRecordsAreRefused":     "the records are the package's: TestRecordsAreThoseOfC",
	"largerRecordsAreServed":       "the records are the package's: TestRecordsAreThoseOfC",
}

func TestEachCaseOfTheInterfaceIsHere(t *testing.T) {
	tests := map[string]bool{}
	files, _ := filepath.Glob(filepath.Join(sources, "*_test.go"))
	for _, file := range files {
		for _, found := range findAll(t, filepath.Base(file), `(?m)^func Test(\w+)\(`) {
			tests[found[1]] = true
		}
	}
	cases := findAll(t, "../../tests/capi/Cases.h", `(?m)^ +CASE\((\w+)\)`)
	for _, one := range cases {
		name := one[1]
		_, excused := impossible[name]
		if tests[strings.ToUpper(name[:1])+name[1:]] == excused {
			t.Errorf("%s: a test, or a reason why there is none", name)
		}
		delete(impossible, name)
	}
	if len(cases) < 80 || len(impossible) != 0 {
		t.Errorf("Of %d cases none is %v.", len(cases), impossible)
	}
}

func TestRecordsAreThoseOfC(t *testing.T) {
	records := map[string]reflect.Type{}
	for _, record := range []any{rawAction{}, rawError{}, rawOutcome{}, rawObserver{}, rawCall{},
		rawTracer{}, rawFinding{}, rawFindingKind{}, rawCheckRequest{}, rawStep{}, rawAssumption{},
		rawPlanner{}} {
		records[reflect.TypeOf(record).Name()] = reflect.TypeOf(record)
	}
	nameInGo := func(name string) string {
		words := strings.Split(name, "_")
		for i, word := range words[1:] {
			words[i+1] = strings.ToUpper(word[:1]) + word[1:]
		}
		return strings.Join(words, "")
	}
	const layout = "../../tests/capi/Layout.c"
	fields := map[string]int{}
	for _, row := range findAll(t, layout, `RECORD_FIELD\(temz_(\w+), (\w+), (\d+), (\d+)\)`) {
		record := nameInGo("raw_" + row[1])
		fields[record]++
		if records[record] == nil {
			t.Errorf("There is no %s.", record)
			continue
		}
		field, found := records[record].FieldByName(nameInGo(row[2]))
		if !found || field.Offset != number(t, row[3]) || field.Type.Size() != number(t, row[4]) {
			t.Errorf("%s is %+v.", row[0], field)
		}
	}
	for _, row := range findAll(t, layout, `RECORD\(temz_(\w+), (\d+), (\d+)\)`) {
		name := nameInGo("raw_" + row[1])
		record := records[name]
		if record == nil || record.Size() != number(t, row[2]) ||
			record.Align() != int(number(t, row[3])) || record.NumField() != fields[name] {
			t.Errorf("%s is %v.", row[0], record)
		}
		delete(records, name)
	}
	if len(records) != 0 {
		t.Errorf("C has no %v.", records)
	}
}

func TestFunctionsAreThoseOfTheLibrary(t *testing.T) {
	exported := findAll(t, "../../capi/TEMZC.def", `(?m)^ +(temz_\w+)`)
	declared := map[string]bool{}
	for _, row := range findAll(t, "raw.go", `NewProc\("(\w+)"\)`) {
		declared[row[1]] = true
	}
	for _, row := range exported {
		if !declared[row[1]] {
			t.Errorf("There is no %s.", row[1])
		}
		delete(declared, row[1])
		if err := dll.NewProc(row[1]).Find(); err != nil {
			t.Error(err)
		}
	}
	if len(exported) == 0 || len(declared) != 0 {
		t.Errorf("The library has no %v.", declared)
	}
}
