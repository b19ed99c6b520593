//go:build windows && amd64

// Package temz drives TEMZ, a script-driven installation engine, through its C interface. TEMZC.dll is
// loaded from the folder of the program when it is first needed.
//
// Errors are an *Error or, of a run that has begun, a *RunError; errors.Is finds their Status. Texts
// are UTF-8 here and UTF-16 there; half a surrogate pair, which is no text, comes as U+FFFD.
package temz

import (
	"context"
	"sync/atomic"
	"syscall"
	"unsafe"
)

// An Engine holds at most one script, with its variables and its last outcome. It is made by New.
//
// It belongs to one goroutine at a time, whichever thread that is on, and a process makes one run at a
// time: while one goes on, other goroutines are told Busy. Inside a callback, which is on the goroutine
// of the run, an Engine may be asked, and its observer, tracer and action value set; what loads, runs or
// closes is told InCallback.
type Engine struct {
	context          uintptr // the library's
	observer, tracer handle
	run              atomic.Pointer[run] // the one that is going on
	replaced         []handle            // with which it may have begun
}

// closed is the context of an Engine that has been closed: never one of the library's.
const closed = 1

// New makes an Engine, which must be closed.
func New() (*Engine, error) {
	if err := open(); err != nil {
		return nil, err
	}
	e := new(Engine)
	if err := failed("create", statusOf(temzCreate.Call(uintptr(unsafe.Pointer(&e.context))))); err != nil {
		return nil, err
	}
	return e, nil
}

// Close unloads the script and ends the Engine.
func (e *Engine) Close() error {
	if err := failed("free", statusOf(temzFree.Call(e.context))); err != nil {
		return err
	}
	e.context = closed
	e.observer.release()
	e.tracer.release()
	return nil
}

// Load reads a script. A relative path counts from the current directory. The Error has the reason,
// but for a file that can't be opened, is no XML, or is nested too deeply.
func (e *Engine) Load(path string) error {
	units, err := utf16("load", path)
	if err != nil {
		return err
	}
	return e.explained("load", statusOf(temzLoad.Call(e.context, uintptr(unsafe.Pointer(units)))))
}

// Unload releases the script; without one it does nothing.
func (e *Engine) Unload() error {
	return failed("unload", statusOf(temzUnload.Call(e.context)))
}

// An Observer watches runs. Each function may be nil. They are called on the goroutine of the run,
// which waits for them. One that panics ends the run, and Run panics in its turn; one that leaves by
// runtime.Goexit ends the process.
type Observer struct {
	// Update is told that an action is about to be carried out. Stop ends the run before it.
	Update func(now *Outcome) Order
	// Ask decides when a vital action has failed; without it every such failure ends the run.
	Ask func(now *Outcome) Answer
}

// SetObserver has an observer, or nobody, watch the runs from now on; one that is going on goes on with
// that with which it began.
func (e *Engine) SetObserver(observer *Observer) error {
	if observer == nil {
		observer = new(Observer)
	}
	return e.watch("set observer", observer)
}

// watch gives the library an observer of ours, which sees to the context of a run, too.
func (e *Engine) watch(call string, observer *Observer) error {
	raw := rawObserver{
		user:   hold(&observing{e, *observer}),
		update: callbacks.update,
		ask:    callbacks.ask,
	}
	raw.size = uint32(unsafe.Sizeof(raw))
	return e.replace(&e.observer, raw.user, call,
		statusOf(temzSetObserver.Call(e.context, uintptr(unsafe.Pointer(&raw)))))
}

// A Tracer sees every call by which runs change or ask the machine. Either function may be nil, but
// not both. What holds for an Observer's functions holds for these.
type Tracer struct {
	// Call is told of a call that has returned.
	Call func(call *Call)
	// Permit is asked before each call that changes something; its result is empty. Stop ends the run
	// before it.
	Permit func(call *Call) Order
}

// SetTracer shows every call of the runs from now on to a tracer, or to nobody, which costs nothing; a
// run that is going on goes on with that with which it began.
func (e *Engine) SetTracer(tracer *Tracer) error {
	if tracer == nil {
		return e.replace(&e.tracer, 0, "set tracer", statusOf(temzSetTracer.Call(e.context, 0)))
	}
	raw := rawTracer{user: hold(&tracing{e, *tracer})}
	raw.size = uint32(unsafe.Sizeof(raw))
	if tracer.Call != nil {
		raw.call = callbacks.call
	}
	if tracer.Permit != nil {
		raw.permit = callbacks.permit
	}
	return e.replace(&e.tracer, raw.user, "set tracer",
		statusOf(temzSetTracer.Call(e.context, uintptr(unsafe.Pointer(&raw)))))
}

// replace puts a handle that the library has taken in the place of another, which stays as long as a
// run may use it.
func (e *Engine) replace(place *handle, by handle, call string, status Status) error {
	if status != OK {
		by.release()
		return failed(call, status)
	}
	if e.run.Load() == nil {
		place.release()
	} else {
		e.replaced = append(e.replaced, *place)
	}
	*place = by
	return nil
}

// SetActionValue sets the value that custom actions find in their parameter record; 0 at first. What
// it points to is the host's to keep alive.
func (e *Engine) SetActionValue(value uint64) error {
	return failed("set action value", statusOf(temzSetActionValue.Call(e.context, uintptr(value))))
}

// Run carries out the install sequence of the script in a mode, and blocks until it has ended. When the
// context is over, the run ends before its next action, or at its next question; what was done stays
// done. The outcome tells whether the machine must be restarted. A run that has begun and failed, or
// has been stopped, gives a *RunError.
func (e *Engine) Run(ctx context.Context, mode Mode) (Outcome, error) {
	return e.begin(ctx, "run", func(_ *run, outcome *rawOutcome) Status {
		return statusOf(temzRun.Call(e.context, uintptr(mode), uintptr(unsafe.Pointer(outcome))))
	})
}

// An Assumption is a variable that a plan finds with another value than the script has.
type Assumption struct {
	Name  string // of any variable, also a const one and OS_BIT and the like
	Value string // as a script would write it: of an integer a decimal number
}

// Plan does as Run does, but changes nothing on the machine, and tells each step; step may be nil. The
// observer is told of actions but never asked: a plan goes on past each failure that a run can go on
// past. What holds for an Observer's functions holds for step. The outcome is that of a run whose
// observer ignores every failure.
func (e *Engine) Plan(ctx context.Context, mode Mode, step func(*Step), assumptions ...Assumption) (Outcome, error) {
	raws := make([]rawAssumption, len(assumptions))
	for i, assumption := range assumptions {
		var err error
		if raws[i].name, err = utf16("plan", assumption.Name); err != nil {
			return Outcome{}, err
		}
		if raws[i].value, err = utf16("plan", assumption.Value); err != nil {
			return Outcome{}, err
		}
	}
	return e.begin(ctx, "plan", func(r *run, outcome *rawOutcome) Status {
		raw := rawPlanner{assumptionCount: uint32(len(raws))}
		raw.size = uint32(unsafe.Sizeof(raw))
		if len(raws) > 0 {
			raw.assumptions = &raws[0]
		}
		if step != nil {
			raw.user = hold(&planning{r, step})
			raw.step = callbacks.step
			defer raw.user.release()
		}
		return statusOf(temzPlan.Call(e.context, uintptr(mode), uintptr(unsafe.Pointer(&raw)),
			uintptr(unsafe.Pointer(outcome))))
	})
}

// begin makes a run or a plan, which `carryOut` asks the library for.
func (e *Engine) begin(ctx context.Context, call string, carryOut func(*run, *rawOutcome) Status) (Outcome, error) {
	r := &run{context: ctx}
	if !e.run.CompareAndSwap(nil, r) {
		return Outcome{}, failed(call, e.refusal())
	}
	defer e.end()
	if e.observer == 0 {
		if err := e.watch(call, new(Observer)); err != nil {
			return Outcome{}, err
		}
	}
	const unwritten = 0xFFFFFFFF // no percentage: the library writes the outcome of a run that has begun
	raw := rawOutcome{progress: unwritten}
	raw.size = uint32(unsafe.Sizeof(raw))
	status := carryOut(r, &raw)
	if r.panicked != nil {
		panic(r.panicked)
	}
	if raw.progress == unwritten {
		return Outcome{}, e.explained(call, status)
	}
	outcome := outcomeOf(&raw)
	if status != OK {
		return outcome, &RunError{status, outcome, r.cause}
	}
	return outcome, nil
}

// end comes behind a run, when nothing of it is called any more.
func (e *Engine) end() {
	for _, replaced := range e.replaced {
		replaced.release()
	}
	e.replaced = nil
	e.run.Store(nil)
}

// refusal is why the library doesn't begin another run while one goes on, which depends on the thread.
// It is asked with a mode that is none, so that nothing begins if that has just ended.
func (e *Engine) refusal() Status {
	const noMode = ^uintptr(0)
	if status := statusOf(temzRun.Call(e.context, noMode, 0)); status != BadMode {
		return status
	}
	return Busy
}

// Outcome gives that of the last run or plan of the loaded script; inside a callback, the state of the
// one that is going on.
func (e *Engine) Outcome() (Outcome, error) {
	var raw rawOutcome
	raw.size = uint32(unsafe.Sizeof(raw))
	if err := failed("get outcome", statusOf(temzGetOutcome.Call(e.context, uintptr(unsafe.Pointer(&raw))))); err != nil {
		return Outcome{}, err
	}
	return outcomeOf(&raw), nil
}

// LastFailure gives the text of the last failure of Load, Plan (of what is assumed), Variable or
// Directory, which the Error has as its reason; empty when the last of these calls succeeded, or failed
// without a word.
func (e *Engine) LastFailure() (string, error) {
	text, status := e.lastFailure()
	return text, failed("last failure", status)
}

func (e *Engine) lastFailure() (string, Status) {
	return readText(func(buffer *uint16, capacity uintptr, length *uintptr) Status {
		return statusOf(temzLastFailure.Call(e.context, uintptr(unsafe.Pointer(buffer)), capacity,
			uintptr(unsafe.Pointer(length))))
	})
}

// explained makes an error of the status of a call that leaves a text of its failure.
func (e *Engine) explained(call string, status Status) error {
	switch status {
	case OK:
		return nil
	case LoadFailed, NotFound, BadValue:
		reason, _ := e.lastFailure()
		return &Error{call, status, reason}
	default:
		return failed(call, status)
	}
}

// Variable gives the text of a string variable of the script. NotFound when there is none of this name
// or it is an integer.
func (e *Engine) Variable(name string) (string, error) {
	return e.find("get variable", temzGetVariable, name)
}

// Directory gives the path of the Directory element with this Id, or of the system's folder of this
// name; it ends in a separator, unless it is empty.
func (e *Engine) Directory(id string) (string, error) {
	return e.find("get directory", temzGetDirectory, id)
}

func (e *Engine) find(call string, function *syscall.LazyProc, name string) (string, error) {
	units, err := utf16(call, name)
	if err != nil {
		return "", err
	}
	text, status := readText(func(buffer *uint16, capacity uintptr, length *uintptr) Status {
		return statusOf(function.Call(e.context, uintptr(unsafe.Pointer(units)),
			uintptr(unsafe.Pointer(buffer)), capacity, uintptr(unsafe.Pointer(length))))
	})
	return text, e.explained(call, status)
}
