//go:build windows && amd64

// A host in Go: installs what install.xml describes, tells of each action and of each call to the
// system, and removes it again. Ctrl+C ends it before the next action.
package main

import (
	"context"
	"fmt"
	"os"
	"os/signal"
	"strings"

	"temz"
)

// update tells of an action that is about to be carried out.
func update(now *temz.Outcome) temz.Order {
	fmt.Printf("%3d%% %s %s\n", now.Progress, now.Action.Text1, now.Action.Text2)
	return temz.Continue
}

// ask tells of a vital action that has failed. A host with a user asks him here: retry, abort or ignore?
func ask(now *temz.Outcome) temz.Answer {
	fmt.Printf("Action %d has failed: %v\n", now.Failure.Code, now.Failure)
	return temz.Abort
}

// show tells of a call to the system that has returned, or of a line of the log.
func show(call *temz.Call) {
	if call.Group == "log" {
		fmt.Printf("       %s\n", call.Arguments[0])
		return
	}
	fmt.Printf("       %s: %s(%s) = %s", call.Group, call.Name, strings.Join(call.Arguments, ", "), call.Result)
	if call.Failed {
		fmt.Printf(", error %d", call.SystemError)
	}
	fmt.Println()
}

func installAndRemove(ctx context.Context) error {
	engine, err := temz.New()
	if err != nil {
		return err
	}
	defer engine.Close()
	if err := engine.SetObserver(&temz.Observer{Update: update, Ask: ask}); err != nil {
		return err
	}
	if err := engine.SetTracer(&temz.Tracer{Call: show}); err != nil {
		return err
	}
	if err := engine.Load("install.xml"); err != nil {
		return err
	}
	for _, mode := range []temz.Mode{temz.Install, temz.Uninstall} {
		outcome, err := engine.Run(ctx, mode)
		if err != nil {
			return err
		}
		if outcome.Restart {
			fmt.Println("Restart the machine to complete this.")
		}
	}
	return nil
}

func main() {
	ctx, stop := signal.NotifyContext(context.Background(), os.Interrupt)
	defer stop()
	if err := installAndRemove(ctx); err != nil {
		fmt.Fprintln(os.Stderr, err)
		os.Exit(1)
	}
	fmt.Println("Installed and removed.")
}
