#include "author/plan/Rehearsal.h"
