//go:build windows && amd64

package temz

import (
	"reflect"
	"strings"
	"testing"
	"unsafe"
)

// expectEachField expects that each field of a record of C, and it alone, is in the field of Go's that has
// its name.
func expectEachField[Raw, Record any](t *testing.T, convert func(*Raw) Record) {
	t.Helper()
	record := reflect.TypeOf(*new(Record))
	for i := 0; i < record.NumField(); i++ {
		name := record.Field(i).Name
		field, found := reflect.TypeOf(*new(Raw)).FieldByNameFunc(func(raw string) bool {
			return strings.EqualFold(raw, name)
		})
		if !found {
			t.Errorf("%v has a %s, which C hasn't.", record, name)
			continue
		}
		if name == "Arguments" {
			continue // two fields in C
		}
		empty := reflect.ValueOf(convert(withTexts(new(Raw))))
		filled := withTexts(new(Raw))
		place := unsafe.Add(unsafe.Pointer(filled), field.Offset)
		switch field.Type.Size() {
		case 4:
			*(*uint32)(place) = 1
		case 8:
			*(*uint64)(place) = 1
		}
		if field.Type.Kind() == reflect.Pointer {
			*(**uint16)(place) = &[]uint16{'x', 0}[0]
		}
		converted := reflect.ValueOf(convert(filled))
		for j := 0; j < record.NumField(); j++ {
			differs := !reflect.DeepEqual(empty.Field(j).Interface(), converted.Field(j).Interface())
			if differs != (i == j) {
				t.Errorf("%s of C: %s is %v.", name, record.Field(j).Name, converted.Field(j))
			}
		}
	}
}

// withTexts makes each text of a record of C an empty one.
func withTexts[Raw any](raw *Raw) *Raw {
	for _, field := range reflect.VisibleFields(reflect.TypeOf(*raw)) {
		if field.Type == reflect.TypeOf((*uint16)(nil)) {
			*(**uint16)(unsafe.Add(unsafe.Pointer(raw), field.Offset)) = new(uint16)
		}
	}
	return raw
}

func TestEachFieldOfARecordComesOver(t *testing.T) {
	expectEachField(t, callOf)
	expectEachField(t, stepOf)
	expectEachField(t, findingOf)
	expectEachField(t, findingKindOf)
}

func TestFailureIsALineForPeople(t *testing.T) {
	h := newHost(t)
	for line, failure := range map[string]Failure{
		"":                   {},
		"a.txt":              {Text1: "a.txt", SystemError: NoSystemError},
		"a.txt: Gone. (2)":   {Text1: "a.txt", Message: "Gone.\r\n", SystemError: 2},
		"No such attribute.": {Message: "No such attribute."},
		"(5)":                {SystemError: 5},
	} {
		equal(h, line, failure.String())
	}
}
