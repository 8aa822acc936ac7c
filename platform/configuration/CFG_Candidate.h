// Configurations that are read and compared before one of them is put in force; see CFG_Factory::Read. The module needs
// none of this, so a configuration library of a host's own may leave it out: CFG_Factory::Read is then null.
#pragma once

#include "platform/Export.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// A configuration that was read and is not in force. Immutable; threads may share it.
class PLATFORM_EXPORT CFG_Candidate {
public:
    virtual ~CFG_Candidate();

    /// The files in the order in which they were read, named as they were opened: PATH, or FOLDER/NAME. Valid while
    /// this object lives.
    virtual const std::vector<std::string>& Files() const = 0;
};

/// Called for each file that is read, on the reading thread, with exactly the bytes that are parsed. The texts are
/// valid during the call. What it throws ends the reading and passes through.
using CFG_FileObserver = std::function<void(const std::string& path, std::string_view content)>;

/// While it lives, CFG_Factory::GetRepositoryServices and CFG_ListEntries answer from the candidate on the thread that
/// made it; other threads do not notice. Scopes of one thread nest: the innermost counts. Make it as a local variable
/// and destroy it on the same thread, the innermost first.
///
/// The root follows the thread that asks: after the scope it answers from what is in force again. Sub-trees and lists
/// that were handed out in the scope keep showing the candidate, and stay valid after the scope and the candidate.
class PLATFORM_EXPORT CFG_CandidateScope {
public:
    /// Throws CFG_Error when `candidate` is null.
    __attribute__((weak)) explicit CFG_CandidateScope(const std::shared_ptr<const CFG_Candidate>& candidate);
    __attribute__((weak)) ~CFG_CandidateScope();
    CFG_CandidateScope(const CFG_CandidateScope&) = delete;
    CFG_CandidateScope& operator=(const CFG_CandidateScope&) = delete;

private:
    const std::shared_ptr<const CFG_Candidate> candidateOfScope;
    const std::shared_ptr<const CFG_Candidate>* const outer;
};
