//go:build windows && amd64

package temz

import (
	"fmt"
	"strings"
	"unsafe"
)

// Error gives the library's text of a status. A Status is what errors.Is compares with:
// errors.Is(err, temz.Busy).
func (s Status) Error() string {
	if temzStatusText.Find() != nil {
		return fmt.Sprintf("Status %d.", int32(s))
	}
	text, _, _ := temzStatusText.Call(uintptr(s))
	return textAt(*(**uint16)(unsafe.Pointer(&text)))
}

// An Error tells of a call that the library hasn't carried out.
type Error struct {
	Call   string // "load"
	Status Status
	Reason string // the text of the last failure, where the library has one
}

func (e *Error) Error() string {
	return strings.TrimSpace("temz: " + e.Call + ": " + e.Status.Error() + " " + e.Reason)
}

// Unwrap gives the status.
func (e *Error) Unwrap() error { return e.Status }

// failed makes an error of a status, but for OK.
func failed(call string, status Status) error {
	if status == OK {
		return nil
	}
	return &Error{Call: call, Status: status}
}

// A RunError tells of a run or a plan that has begun and not come to its end.
type RunError struct {
	Status  Status // RunFailed, Stopped, NoMemory or Internal
	Outcome Outcome
	Cause   error // that of the context whose end has ended the run, else nil
}

func (e *RunError) Error() string {
	text := "temz: " + e.Status.Error()
	if e.Status == RunFailed {
		text += " " + e.Outcome.Failure.String()
	}
	if e.Cause != nil {
		text += " (" + e.Cause.Error() + ")"
	}
	return text
}

// Is compares with the status; the cause is found by Unwrap.
func (e *RunError) Is(target error) bool { return target == e.Status }

// Unwrap gives the cause.
func (e *RunError) Unwrap() error { return e.Cause }
