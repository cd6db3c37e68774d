// Tells whether the check names the mistake in a calibration.
#ifndef ITOF_TESTS_SUPPORT_VERDICT_H_
#define ITOF_TESTS_SUPPORT_VERDICT_H_

#include "support/mistakes.h"

enum class Verdict { kNothing, kNoticed, kNamed, kWrong };

/// What the findings that `sound` does not have say about the mistake: nothing, that something is wrong, its name, or a
/// wrong name. A finding that lists readings is right if one of them is the expected one, or if its pixels go where those
/// of `sound` go. One without readings, or on a mistake that no reading undoes, is right if its code is expected.
Verdict VerdictOn(const Mistake& mistake, const itof::CalibrationRecord& sound);

#endif  // ITOF_TESTS_SUPPORT_VERDICT_H_
