//go:build windows && amd64

package temz

import (
	"context"
	"errors"
	"os"
	"os/exec"
	"path/filepath"
	"reflect"
	"strings"
	"syscall"
	"testing"
	"unsafe"
)

// sources is the folder of this package, in which `go test` begins; the tests move on to that of their
// program, beside which the library, the custom actions and the example product lie.
var sources string

func TestMain(m *testing.M) {
	sources, _ = os.Getwd()
	os.Chdir(filepath.Dir(program))
	// A program that ends before its tests do leaves this file behind.
	unfinished := os.Getenv("TEST_PREMATURE_EXIT_FILE")
	os.WriteFile(unfinished, nil, 0o600)
	result := m.Run()
	os.Remove(unfinished)
	os.Exit(result)
}

// Where the scripts of the cases install.
const (
	folder = `C:\temz-go`
	app    = folder + `\app`
)

// script is one with a sequence of its own, some variables, a component of three files, and one of a
// file that can't be had.
func script(sequence string) string {
	return `<Script><Variable Id='TEXT' Type='string' Value='a text'/>
		<Variable Id='EMPTY' Type='string' Value=''/>
		<Variable Id='NUMBER' Type='int' Value='7'/><Product Id='P'>
		<Directory Id='APPLICATIONROOTDIRECTORY' Path='` + app + `'><Component Id='Files'>
		<File Name='1.txt' Source='payload\greeter.txt'/>
		<File Name='2.txt' Source='payload\manual.txt'/>
		<File Name='3.txt' Source='payload\changes.txt'/></Component>
		<Component Id='Missing'><File Name='4.txt' Source='payload\missing.txt'/></Component>
		</Directory>
		<InstallExecuteSequence>` + sequence + `</InstallExecuteSequence></Product></Script>`
}

var (
	threeFiles = script(`<Feature><ComponentRef Id='Files'/></Feature>`)
	// One announcement, which does nothing.
	aCaution   = `<Fragment><Caution Title='Mind the gap'/></Fragment>`
	oneCaution = script(aCaution)
	// An action that answers what host.action says.
	oneAction = script(`<Fragment><CustomAction DllFile='temz_test_actions.dll' DllEntry='answer'
		Return='check' Title='A title'/></Fragment>`)
)

// An actionCall is what a test and its library of custom actions tell each other, as in C.
type actionCall struct {
	result     uint32
	text       *uint16
	textLength uintptr

	calls    uint32
	params   [280]byte
	message  [1024]uint16
	capacity uint32
	thread   uint32
}

// A host does what its test says and notes what it hears.
type host struct {
	*testing.T
	engine  *Engine
	outcome Outcome // of the last run
	action  *actionCall

	stopAt   int // the update, counted from 1, that is answered with stop
	stop     Order
	answers  []Answer // Abort behind the last
	refuseAt int      // the permit that is answered with refusal
	refusal  Order

	inUpdate, inAsk    func(now *Outcome)
	inCall, inPermit   func(call *Call)
	inStep             func(step *Step)
	updates, asks      int
	lastUpdate, asked  Outcome
	calls, permissions []Call
	steps              []Step
}

func newHost(t *testing.T) *host {
	t.Helper()
	os.Mkdir(folder, 0o777)
	h := &host{T: t, action: new(actionCall), stop: Stop, refusal: Stop}
	var err error
	if h.engine, err = New(); err != nil {
		t.Fatal(err)
	}
	h.expect(nil, h.engine.SetObserver(h.observer()))
	h.expect(nil, h.engine.SetActionValue(uint64(uintptr(unsafe.Pointer(h.action)))))
	t.Cleanup(h.close)
	return h
}

func (h *host) close() {
	h.Helper()
	h.expect(nil, h.engine.Unload())
	h.expect(nil, h.engine.SetObserver(nil))
	h.expect(nil, h.engine.SetTracer(nil))
	h.expect(nil, h.load(script(`<Fragment><RemoveDirectory Path='`+folder+`'/></Fragment>`)))
	h.expect(nil, h.run(Install))
	h.check(!isThere(folder), "%s is left", folder)
	h.expect(nil, h.engine.Close())
	equal(h, 0, len(handles.values))
	equal(h, 0, len(h.engine.replaced))
}

func (h *host) observer() *Observer {
	return &Observer{
		Update: func(now *Outcome) Order {
			h.updates++
			h.lastUpdate = *now
			if h.inUpdate != nil {
				h.inUpdate(now)
			}
			if h.updates == h.stopAt {
				return h.stop
			}
			return Continue
		},
		Ask: func(now *Outcome) Answer {
			h.asks++
			h.asked = *now
			if h.inAsk != nil {
				h.inAsk(now)
			}
			if h.asks <= len(h.answers) {
				return h.answers[h.asks-1]
			}
			return Abort
		},
	}
}

// trace lets the host hear calls; guard lets it be asked for permits, and hear no call.
func (h *host) trace() {
	h.Helper()
	h.expect(nil, h.engine.SetTracer(&Tracer{Call: func(call *Call) {
		h.calls = append(h.calls, *call)
		if h.inCall != nil {
			h.inCall(call)
		}
	}}))
}

func (h *host) guard() {
	h.Helper()
	h.expect(nil, h.engine.SetTracer(&Tracer{Permit: func(call *Call) Order {
		h.permissions = append(h.permissions, *call)
		if h.inPermit != nil {
			h.inPermit(call)
		}
		if len(h.permissions) == h.refuseAt {
			return h.refusal
		}
		return Continue
	}}))
}

func (h *host) load(script string) error {
	path := folder + `\script.xml`
	if err := os.WriteFile(path, []byte(script), 0o666); err != nil {
		h.Error(err)
	}
	return h.engine.Load(path)
}

func (h *host) run(mode Mode) (err error) {
	h.outcome, err = h.engine.Run(context.Background(), mode)
	return err
}

func (h *host) plan(mode Mode, assumptions ...Assumption) (err error) {
	h.outcome, err = h.engine.Plan(context.Background(), mode, func(step *Step) {
		h.steps = append(h.steps, *step)
		if h.inStep != nil {
			h.inStep(step)
		}
	}, assumptions...)
	return err
}

// expect compares an error, or the status that it has, with what is expected. A failure inside a
// callback must be an Errorf: nothing here ends the goroutine.
func (h *host) expect(expected, err error) {
	h.Helper()
	if !errors.Is(err, expected) {
		h.Errorf("expected: %v, but it is: %v", expected, err)
	}
}

func (h *host) check(holds bool, format string, arguments ...any) {
	h.Helper()
	if !holds {
		h.Errorf(format, arguments...)
	}
}

func equal[T any](h *host, expected, actual T) {
	h.Helper()
	if !reflect.DeepEqual(expected, actual) {
		h.Errorf("expected: %v, but it is: %v", expected, actual)
	}
}

// nth gives one of those that are so, counted from 0; an empty one when there is none.
func nth[T any](all []T, index int, isSo func(T) bool) (one T) {
	for _, one := range all {
		if isSo(one) {
			if index == 0 {
				return one
			}
			index--
		}
	}
	return one
}

func (h *host) heard(name string, index int) Call {
	return nth(h.calls, index, func(call Call) bool { return call.Name == name })
}

func (h *host) heardStep(kind StepKind, index int) Step {
	return nth(h.steps, index, func(step Step) bool { return step.Kind == kind })
}

func (h *host) expectFiles(first, second, third bool) {
	h.Helper()
	equal(h, first, isThere(app+`\1.txt`))
	equal(h, second, isThere(app+`\2.txt`))
	equal(h, third, isThere(app+`\3.txt`))
}

func isThere(path string) bool {
	_, err := os.Stat(path)
	return err == nil
}

// letActionFail loads a script whose action fails with a text; letActionSucceed mends it.
func (h *host) letActionFail() {
	h.Helper()
	const text = "It went wrong."
	h.action.result = 1234
	h.action.text, _ = syscall.UTF16PtrFromString(text)
	h.action.textLength = uintptr(len(text))
	h.expect(nil, h.load(oneAction))
}

func (h *host) letActionSucceed(*Outcome) {
	h.action.result = 0
	h.action.textLength = 0
}

func (h *host) expectFailureOfAction(failure Failure) {
	h.Helper()
	equal(h, Failure{ActionCustomAction, 1234, "answer", "A title", "It went wrong."}, failure)
}

// onThread calls a function on another thread and waits for it.
func onThread(function func()) {
	done := make(chan struct{})
	go func() {
		defer close(done)
		function()
	}()
	<-done
}

// runAgain runs a test in a process of its own, which an environment tells so, and gives what it has told.
func runAgain(t *testing.T, program, environment string) (string, error) {
	child := exec.Command(program, "-test.run", "^"+t.Name()+"$")
	child.Env = append(os.Environ(), environment, "TEST_PREMATURE_EXIT_FILE=")
	output, err := child.CombinedOutput()
	return string(output), err
}

// functions are those of an Engine, called with arguments that are as they should be, and what they
// answer without a script and inside a callback of a run.
func (h *host) functions() []function {
	return []function{
		{"load", func(e *Engine) error { return e.Load("missing.xml") }, LoadFailed, InCallback},
		{"unload", (*Engine).Unload, nil, InCallback},
		{"set observer", func(e *Engine) error { return e.SetObserver(h.observer()) }, nil, nil},
		{"set tracer", func(e *Engine) error { return e.SetTracer(nil) }, nil, nil},
		{"set action value", func(e *Engine) error {
			return e.SetActionValue(uint64(uintptr(unsafe.Pointer(h.action))))
		}, nil, nil},
		{"run", func(e *Engine) error {
			_, err := e.Run(context.Background(), Install)
			return err
		}, NotLoaded, InCallback},
		{"plan", func(e *Engine) error {
			_, err := e.Plan(context.Background(), Install, nil)
			return err
		}, NotLoaded, InCallback},
		{"get outcome", func(e *Engine) error {
			_, err := e.Outcome()
			return err
		}, NotLoaded, nil},
		{"last failure", func(e *Engine) error {
			_, err := e.LastFailure()
			return err
		}, nil, nil},
		{"get variable", func(e *Engine) error {
			_, err := e.Variable("TEXT")
			return err
		}, NotLoaded, nil},
		{"get directory", func(e *Engine) error {
			_, err := e.Directory("System32Folder")
			return err
		}, NotLoaded, nil},
	}
}

type function struct {
	name                          string
	call                          func(e *Engine) error
	withoutScript, insideCallback error
}

// expectOfAll expects one status of all functions of an Engine.
func (h *host) expectOfAll(status Status, e *Engine) {
	h.Helper()
	for _, function := range h.functions() {
		err := function.call(e)
		h.check(errors.Is(err, status), "%s: %v", function.name, err)
	}
}

func (h *host) callEverything() {
	h.Helper()
	for _, function := range h.functions() {
		err := function.call(h.engine)
		h.check(errors.Is(err, function.insideCallback), "%s: %v", function.name, err)
	}
	h.expect(InCallback, h.engine.Close())
	_, err := New()
	h.expect(InCallback, err)
}

func endsIn(h *host, text, end string) {
	h.Helper()
	h.check(strings.HasSuffix(text, end), "%q doesn't end in %q", text, end)
}
