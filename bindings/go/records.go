//go:build windows && amd64

package temz

import (
	"fmt"
	"strings"
	"syscall"
	"time"
	"unsafe"
)

// An Action is about to be carried out, or was the last.
type Action struct {
	Code  Code   // Action...; 0 before the first
	Text1 string // normally the object of the action
	Text2 string // a further text, often empty
}

// A Failure is the last one of a run. It doesn't tell whether the run has succeeded: what was ignored
// stands here too, and each action that starts sets Code to ErrorMessage and empties the rest.
type Failure struct {
	Code        Code   // Error..., or the Action... that failed
	SystemError uint32 // the system's or the action's number; 0 or NoSystemError where there is none
	Text1       string // the object of the action
	Text2       string // a further text of the action
	Message     string // readable; may be empty or end in a line end
}

// NoSystemError is, beside 0, the SystemError of a Failure that has none.
const NoSystemError = 0xFFFFFFFF

// String gives a line for people: the object, the message, and the number.
func (f Failure) String() string {
	var parts []string
	for _, text := range []string{f.Text1, strings.TrimSpace(f.Message)} {
		if text != "" {
			parts = append(parts, text)
		}
	}
	line := strings.Join(parts, ": ")
	if f.SystemError != 0 && f.SystemError != NoSystemError {
		line = strings.TrimSpace(fmt.Sprintf("%s (%d)", line, f.SystemError))
	}
	return line
}

// An Outcome is what a run has come to: while it goes on, in the callbacks; afterwards, its end.
type Outcome struct {
	Result   int32 // 0, -1, or the code of the action that failed; 0 while it goes on and when it was stopped
	Restart  bool  // a file waits for the next restart of the machine
	Progress int   // percent of the run at the last action
	Action   Action
	Failure  Failure
}

func outcomeOf(raw *rawOutcome) Outcome {
	return Outcome{
		Result:   raw.result,
		Restart:  raw.restart != 0,
		Progress: int(raw.progress),
		Action: Action{
			Code:  raw.action.code,
			Text1: syscall.UTF16ToString(raw.action.text1[:]),
			Text2: syscall.UTF16ToString(raw.action.text2[:]),
		},
		Failure: Failure{
			Code:        raw.error.code,
			SystemError: raw.error.systemError,
			Text1:       syscall.UTF16ToString(raw.error.text1[:]),
			Text2:       syscall.UTF16ToString(raw.error.text2[:]),
			Message:     syscall.UTF16ToString(raw.error.message[:]),
		},
	}
}

// A Call is one by which the engine changes or asks the machine, as it returned; or a line of the
// engine's own log, before it is written: its group is "log", its name the level, and its only
// argument the line.
type Call struct {
	Group       string // "file", "registry", "service", "process", "shell", "link", ...
	Name        string // "CopyFileW"
	Arguments   []string
	Result      string
	Failed      bool
	SystemError uint32 // of a call that failed
	Duration    time.Duration
	Changes     bool // the engine acts on the machine by it, or has others act
}

func callOf(raw *rawCall) Call {
	arguments := make([]string, raw.argumentCount)
	for i, argument := range unsafe.Slice(raw.arguments, raw.argumentCount) {
		arguments[i] = textAt(argument)
	}
	return Call{
		Group:       textAt(raw.group),
		Name:        textAt(raw.name),
		Arguments:   arguments,
		Result:      textAt(raw.result),
		Failed:      raw.failed != 0,
		SystemError: raw.systemError,
		Duration:    time.Duration(raw.duration),
		Changes:     raw.changes != 0,
	}
}

// A Step is one of a plan. What has no meaning for its kind is zero.
type Step struct {
	Kind          StepKind
	Depth         int    // of the element in which it happens: 0 directly in the sequence
	Line          int    // of the script, from 1, on which that element begins
	Element       string // its name: "File"
	ID            string // its Id, or empty
	Object        string // what it is about; see the kinds
	Detail        string // see the kinds; of a change where its content comes from
	Before        string // of a change: what was there, for people; empty for nothing
	After         string // of a change: what is there then; of a search see there
	Message       string // of a failure: readable, may be empty or end in a line end
	Bytes         uint64 // of a change: what it takes on the disk
	BytesBefore   uint64 // of a change: what the thing took before
	Code          Code   // see the kinds
	SystemError   uint32 // of a failure, as there
	Holds         bool   // a condition is true, or a file found
	Fate          Fate   // of a failure
	SameContent   bool   // a file is replaced by one of the same content, or a value set to what it is
	Unforeseeable bool   // what a change does beyond this can't be foreseen
	Elements      int    // that are left out
	Files         int    // of these, elements File
}

func stepOf(raw *rawStep) Step {
	return Step{
		Kind:          raw.kind,
		Depth:         int(raw.depth),
		Line:          int(raw.line),
		Element:       textAt(raw.element),
		ID:            textAt(raw.id),
		Object:        textAt(raw.object),
		Detail:        textAt(raw.detail),
		Before:        textAt(raw.before),
		After:         textAt(raw.after),
		Message:       textAt(raw.message),
		Bytes:         raw.bytes,
		BytesBefore:   raw.bytesBefore,
		Code:          raw.code,
		SystemError:   raw.systemError,
		Holds:         raw.holds != 0,
		Fate:          raw.fate,
		SameContent:   raw.sameContent != 0,
		Unforeseeable: raw.unforeseeable != 0,
		Elements:      int(raw.elements),
		Files:         int(raw.files),
	}
}
