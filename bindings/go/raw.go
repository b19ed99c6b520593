//go:build windows && amd64

package temz

import (
	"os"
	"path/filepath"
	"syscall"
)

// The records of temz.h, field by field.

const textLength = 512

type rawAction struct {
	code  Code
	text1 [textLength]uint16
	text2 [textLength]uint16
}

type rawError struct {
	code        Code
	systemError uint32
	text1       [textLength]uint16
	text2       [textLength]uint16
	message     [textLength]uint16
}

type rawOutcome struct {
	size     uint32
	result   int32
	restart  uint32
	progress uint32
	action   rawAction
	error    rawError
}

type rawObserver struct {
	size   uint32
	user   handle
	update uintptr
	ask    uintptr
}

type rawCall struct {
	size          uint32
	failed        uint32
	systemError   uint32
	argumentCount uint32
	group         *uint16
	name          *uint16
	arguments     **uint16
	result        *uint16
	duration      uint64
	changes       uint32
}

type rawTracer struct {
	size   uint32
	user   handle
	call   uintptr
	permit uintptr
}

type rawFinding struct {
	size       uint32
	severity   Severity
	endsRun    uint32
	line       uint32
	column     uint32
	length     uint32
	code       *uint16
	file       *uint16
	text       *uint16
	help       *uint16
	sourceLine *uint16
}

type rawFindingKind struct {
	size     uint32
	severity Severity
	code     *uint16
	meaning  *uint16
	remedy   *uint16
}

type rawCheckRequest struct {
	size     uint32
	script   *uint16
	payload  *uint16
	previous *uint16
	user     handle
	finding  uintptr
}

type rawStep struct {
	size          uint32
	kind          StepKind
	depth         uint32
	line          uint32
	element       *uint16
	id            *uint16
	object        *uint16
	detail        *uint16
	before        *uint16
	after         *uint16
	message       *uint16
	bytes         uint64
	bytesBefore   uint64
	code          Code
	systemError   uint32
	holds         uint32
	fate          Fate
	sameContent   uint32
	unforeseeable uint32
	elements      uint32
	files         uint32
}

type rawAssumption struct {
	name  *uint16
	value *uint16
}

type rawPlanner struct {
	size            uint32
	assumptionCount uint32
	assumptions     *rawAssumption
	user            handle
	step            uintptr
}

// TEMZC.dll in the folder of the program, and nowhere else.
var (
	program, programError = os.Executable()
	dll                   = syscall.NewLazyDLL(filepath.Join(filepath.Dir(program), "TEMZC.dll"))
)

// The functions of temz.h. They are called by Call, which puts what its arguments point to on the
// heap and keeps it until it returns: a callback may let the stack move.
var (
	temzVersion        = dll.NewProc("temz_version")
	temzCheckVersion   = dll.NewProc("temz_check_version")
	temzStatusText     = dll.NewProc("temz_status_text")
	temzCreate         = dll.NewProc("temz_create")
	temzFree           = dll.NewProc("temz_free")
	temzLoad           = dll.NewProc("temz_load")
	temzUnload         = dll.NewProc("temz_unload")
	temzSetObserver    = dll.NewProc("temz_set_observer")
	temzSetTracer      = dll.NewProc("temz_set_tracer")
	temzSetActionValue = dll.NewProc("temz_set_action_value")
	temzRun            = dll.NewProc("temz_run")
	temzPlan           = dll.NewProc("temz_plan")
	temzGetOutcome     = dll.NewProc("temz_get_outcome")
	temzLastFailure    = dll.NewProc("temz_last_failure")
	temzGetVariable    = dll.NewProc("temz_get_variable")
	temzGetDirectory   = dll.NewProc("temz_get_directory")
	temzCheck          = dll.NewProc("temz_check")
	temzGetFindingKind = dll.NewProc("temz_get_finding_kind")
	temzSchema         = dll.NewProc("temz_schema")
)
