//go:build windows && amd64

package temz

import (
	"context"
	"sync"
	"syscall"
)

// A handle stands for a value of Go's where the library keeps something for the host.
type handle uintptr

var handles = struct {
	sync.Mutex
	last   handle
	values map[handle]any
}{values: map[handle]any{}}

func hold(value any) handle {
	handles.Lock()
	defer handles.Unlock()
	handles.last++
	handles.values[handles.last] = value
	return handles.last
}

func held[T any](h handle) T {
	handles.Lock()
	defer handles.Unlock()
	return handles.values[h].(T)
}

func (h handle) release() {
	handles.Lock()
	defer handles.Unlock()
	delete(handles.values, h)
}

// What a handle stands for in the records of an observer, a tracer, a planner and a check.
type (
	observing struct {
		engine   *Engine
		observer Observer
	}
	tracing struct {
		engine *Engine
		tracer Tracer
	}
	planning struct {
		run  *run
		step func(*Step)
	}
	checking struct {
		findings []Finding
	}
)

// The functions that the library calls. A process can't have many of them and never gets one back, so
// there is one for each place in a record.
var callbacks = struct{ update, ask, call, permit, step, finding uintptr }{
	update:  syscall.NewCallback(onUpdate),
	ask:     syscall.NewCallback(onAsk),
	call:    syscall.NewCallback(onCall),
	permit:  syscall.NewCallback(onPermit),
	step:    syscall.NewCallback(onStep),
	finding: syscall.NewCallback(onFinding),
}

func onUpdate(user handle, now *rawOutcome) uintptr {
	to := held[*observing](user)
	return uintptr(answerOf(to.engine.run.Load(), Stop, func() Order {
		if to.observer.Update == nil {
			return Continue
		}
		outcome := outcomeOf(now)
		return to.observer.Update(&outcome)
	}))
}

func onAsk(user handle, now *rawOutcome) uintptr {
	to := held[*observing](user)
	return uintptr(answerOf(to.engine.run.Load(), Abort, func() Answer {
		if to.observer.Ask == nil {
			return Abort
		}
		outcome := outcomeOf(now)
		return to.observer.Ask(&outcome)
	}))
}

func onPermit(user handle, raw *rawCall) uintptr {
	to := held[*tracing](user)
	return uintptr(answerOf(to.engine.run.Load(), Stop, func() Order {
		call := callOf(raw)
		return to.tracer.Permit(&call)
	}))
}

func onCall(user handle, raw *rawCall) uintptr {
	to := held[*tracing](user)
	to.engine.run.Load().tell(func() {
		call := callOf(raw)
		to.tracer.Call(&call)
	})
	return 0
}

func onStep(user handle, raw *rawStep) uintptr {
	to := held[*planning](user)
	to.run.tell(func() {
		step := stepOf(raw)
		to.step(&step)
	})
	return 0
}

func onFinding(user handle, raw *rawFinding) uintptr {
	to := held[*checking](user)
	to.findings = append(to.findings, findingOf(raw))
	return 0
}

// A run is a run or a plan that is going on, on the Go side of it.
type run struct {
	context  context.Context
	cause    error // why the context has ended the run
	panicked any   // with what a callback has panicked; nothing of the host's is called any more
}

// answerOf gives what a callback answers, or the answer that ends the run: when the run's context is
// over, or a callback has panicked.
func answerOf[T Order | Answer](r *run, ending T, callback func() T) T {
	if r.cause = r.context.Err(); r.cause != nil {
		return ending
	}
	answer := ending
	r.tell(func() { answer = callback() })
	return answer
}

// tell calls a callback. A panic must not leave through the library, whose frames would be lost: it
// waits for the end of the run.
func (r *run) tell(callback func()) {
	if r.panicked != nil {
		return
	}
	returned := false
	defer func() {
		if returned {
			return
		}
		if r.panicked = recover(); r.panicked == nil {
			endProcess()
		}
	}()
	callback()
	returned = true
}

// endProcess is the end of one whose callback leaves by runtime.Goexit, which nothing can hold up.
func endProcess() {
	go panic("temz: a callback has called runtime.Goexit, as testing's FailNow does, or panic(nil)")
	select {}
}
