#pragma once

namespace orvex::bench {

class Figures;
class Corpus;

/// Listing files through the inspection, beside a bare loop over the same files in the same run.
void MeasureListing(const Corpus& corpus, Figures& figures);

}  // namespace orvex::bench
