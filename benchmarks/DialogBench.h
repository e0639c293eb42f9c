#pragma once

#include "benchmarks/Bench.h"

namespace orvex::bench {

/// Time until the dialog is painted: the first time in the process, and later ones.
void MeasureOpening(Figures& figures);
/// Adding all files through the dialog: time to the first rows, total time, longest stall.
void MeasureAdding(const Corpus& corpus, Figures& figures);
/// Memory per row, with files in at least two folders that this process has not listed before.
void MeasureMemory(const Corpus& corpus, Figures& figures);
/// Time from Escape to the end of a run.
void MeasureEscape(const Corpus& corpus, Figures& figures);

}  // namespace orvex::bench
