#pragma once

namespace orvex::bench {

class Figures;
class LasCorpus;

/// Listing files through the inspection, beside a bare loop over the same files in the same run.
void MeasureListing(const LasCorpus& corpus, Figures& figures);

}  // namespace orvex::bench
