#pragma once

namespace orvex::bench {

class Figures;
class Corpus;

/// How long the dialog takes to open: the first time in the process, and after that.
void MeasureOpening(Figures& figures);
/// Adding all files through the dialog: the first rows, the whole, the longest stall.
void MeasureAdding(const Corpus& corpus, Figures& figures);
/// The memory of a row: files that this process has not listed before, in at least two folders.
void MeasureMemory(const Corpus& corpus, Figures& figures);
/// How soon Escape ends a run.
void MeasureEscape(const Corpus& corpus, Figures& figures);

}  // namespace orvex::bench
