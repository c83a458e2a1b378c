// A document of any size read with deferred loading, saved in pieces and dropped as it goes: how fast, and how much
// memory the process takes at most.
//
//   bench_stream [MEGABYTES]     prints "MB_PER_SECOND PEAK_MB"; the default is 64
//   bench_stream --check         only whether everything comes out again, on a small one

#include <lumcommon/lumcommon.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "contest/Stopwatch.h"

namespace {

using namespace LumCommon;

/// One page sequence of about 500 KB: paragraphs with inline elements, rows of a table.
std::string makeChapter() {
    std::string chapter = "<fo:page-sequence master-reference=\"body\"><fo:flow flow-name=\"xsl-region-body\">";
    for (int i = 0; i < 1000; ++i) {
        const std::string number = std::to_string(i);
        chapter +=
            "<fo:block id=\"b" + number + "\" space-before.optimum=\"1em\" text-align=\"justify\">Paragraph " + number +
            " says <fo:inline font-style=\"italic\">something</fo:inline> about its page &amp; the next, and goes "
            "on\n  for another line or two, as paragraphs do.</fo:block>";
        chapter += "<fo:table-row><fo:table-cell padding-start=\"2pt\" padding-end=\"2pt\"><fo:block>" + number +
                   "</fo:block></fo:table-cell><fo:table-cell border-after-style=\"solid\"><fo:block>cell"
                   "</fo:block></fo:table-cell></fo:table-row>\n";
    }
    return chapter + "</fo:flow></fo:page-sequence>\n";
}

/// Delivers a document without having it: begin, chapters, end.
class Book : private std::streambuf, public std::istream {
public:
    explicit Book(std::size_t wantedBytes)
        : std::istream(this), chapter_(makeChapter()), chapterCount_(wantedBytes / chapter_.size() + 1) {}
    std::size_t getChapterCount() const { return chapterCount_; }
    std::size_t getSizeBytes() const { return begin_.size() + chapterCount_ * chapter_.size() + end_.size(); }

private:
    std::streambuf::int_type underflow() override {
        if (delivered_ > chapterCount_ + 1) return std::streambuf::traits_type::eof();
        std::string& piece = delivered_ == 0 ? begin_ : delivered_ <= chapterCount_ ? chapter_ : end_;
        ++delivered_;
        setg(piece.data(), piece.data(), piece.data() + piece.size());
        return std::streambuf::traits_type::to_int_type(piece.front());
    }

    std::string begin_ = "<?xml version=\"1.0\"?>\n<fo:root xmlns:fo=\"http://www.w3.org/1999/XSL/Format\">";
    std::string chapter_;
    std::string end_ = "</fo:root>";
    std::size_t chapterCount_;
    std::size_t delivered_ = 0;
};

/// Counts what is written and drops it.
class Counter : private std::streambuf, public std::ostream {
public:
    Counter() : std::ostream(this) {}
    std::size_t getSizeBytes() const { return sizeBytes_; }

private:
    std::streamsize xsputn(const char*, std::streamsize count) override {
        sizeBytes_ += static_cast<std::size_t>(count);
        return count;
    }
    std::streambuf::int_type overflow(std::streambuf::int_type c) override {
        ++sizeBytes_;
        return std::streambuf::traits_type::not_eof(c);
    }

    std::size_t sizeBytes_ = 0;
};

/// Returns the number of chapters.
std::size_t copy(std::istream& in, std::ostream& out) {
    const LumPtr<LumDocument> document(new LumDocument);
    document->setDeferredLoad(true);
    document->load(in);
    document->saveDocumentElement(out);
    std::size_t count = 0;
    LumElement* const root = document->getDocumentElement();
    for (LumNode* child = root->getFirstChild(); child;) {
        document->saveChildElement(child);
        LumNode* const next = child->getNextSibling();
        count += child->isElementNode();
        child->deleteAllChildNodes();
        root->removeChild(child);
        child = next;
    }
    document->closeDocumentElement();
    return count;
}

/// The most memory that this program was resident with. getrusage() would also tell that of the program that started
/// it.
double peakMegabytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:")) return std::stod(line.substr(6)) * 1024 / 1e6;
    }
    return 0;
}

}  // namespace

int main(int argc, char* argv[]) {
    const bool isCheck = argc > 1 && std::strcmp(argv[1], "--check") == 0;
    const long megabytes = isCheck ? 1 : argc > 1 ? std::atol(argv[1]) : 64;
    if (megabytes < 1) return 2;
    Book in(static_cast<std::size_t>(megabytes) * 1'000'000);
    Counter out;
    LumBench::Stopwatch watch;
    const std::size_t chapters = copy(in, out);
    const double seconds = watch.lap();
    // What comes out is as long as what goes in, but for the declaration and the form of a few characters.
    if (chapters != in.getChapterCount() || out.getSizeBytes() < in.getSizeBytes() / 100 * 98) {
        std::fprintf(stderr, "bench_stream: %zu chapters of %zu, %zu bytes of %zu\n", chapters, in.getChapterCount(),
                     out.getSizeBytes(), in.getSizeBytes());
        return 1;
    }
    if (!isCheck) std::printf("%.6g %.6g\n", static_cast<double>(in.getSizeBytes()) / seconds / 1e6, peakMegabytes());
    return 0;
}
