// Writes why items are recommended: a table for people, CSV, JSON lines.
//
//   csv, jsonl  customer, rank, item, label, wins, confidence, support, cause, count, together,
//               skipped, place, sequence: a row a proposal (lattice/Proposal.h). `rank` is the
//               item's in the answer; `place` is current where the item joins the last item set,
//               future where it opens a new one; fractions read back exactly, in CSV they have 17
//               significant digits; the sequence is (1 2)(3) in CSV and [[1,2],[3]] in JSON lines.
//
// Every operation appends to the caller's text. Threads: one at a time on one writer.

#ifndef CLI_PROPOSALWRITER_H_
#define CLI_PROPOSALWRITER_H_

#include <cstddef>
#include <memory>
#include <span>
#include <string>

#include "io/Model.h"
#include "lattice/Proposal.h"

namespace orbseq {

struct RankedProposal {
  std::size_t rank = 0;  // of the item in the answer, from 1
  const SEQUENCE_NAMESPACE_800::Proposal* proposal = nullptr;
};

class ProposalWriter {
 public:
  // `format` is table, csv or jsonl. `labels` must outlive the writer.
  static std::unique_ptr<ProposalWriter> make(const std::string& format,
                                              const ItemLabelMap& labels);
  virtual ~ProposalWriter() = default;

  virtual void appendHeader(std::string& out) const = 0;
  // `history` is for people.
  virtual void append(std::string& out, const std::string& customer, const std::string& history,
                      std::span<const RankedProposal> proposals) const = 0;
};

}  // namespace orbseq

#endif  // CLI_PROPOSALWRITER_H_
