#pragma once

namespace orvex::bench {

class Figures;
class LasCorpus;

/// How long the dialog takes to open: the first time in the process, and after that.
void MeasureOpening(Figures& figures);
/// Adding all files through the dialog: the first rows, the longest stall, the memory of a row.
void MeasureAdding(const LasCorpus& corpus, Figures& figures);
/// How soon Escape ends a run.
void MeasureEscape(const LasCorpus& corpus, Figures& figures);

}  // namespace orvex::bench
