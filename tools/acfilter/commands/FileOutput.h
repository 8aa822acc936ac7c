// Adapts an output file to the interface that render/ writes to.
#pragma once

#include "tools/acfilter/io/OutputFile.h"
#include "tools/acfilter/io/TemporaryLines.h"
#include "tools/acfilter/render/TextOutput.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace secm::acfilter {

/// `outputFile` must outlive this object. The caller calls its Finish.
class FileOutput final : public TextOutput {
public:
    explicit FileOutput(OutputFile& outputFile) : file(outputFile) {}

    void Write(std::string_view text) override { file.Write(text); }

    std::unique_ptr<WaitingLines> MakeWaitingLines() override
    {
        return std::make_unique<LinesInFile>(file.ScratchFolder());
    }

private:
    class LinesInFile final : public WaitingLines {
    public:
        explicit LinesInFile(const std::string& folder) : lines(folder) {}

        void Write(std::string_view added) override { lines.Write(added); }

        void ForEachLine(const std::function<void(std::string_view line)>& handle) override
        {
            lines.ForEachLine(handle);
        }

    private:
        TemporaryLines lines;
    };

    OutputFile& file;
};

} // namespace secm::acfilter
