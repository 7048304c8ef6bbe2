#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace zv::bench {

/// A number with so many places behind the point.
std::string number(double value, int places = 2);
/// "met" or "not met"; nothing when it was not measured (a value below 0).
std::string verdict(double value, double most);

/// A table of texts that is printed, and kept as CSV and as Markdown. Every row has as many cells as there
/// are columns.
struct Table {
    std::string name;   ///< of the CSV file
    std::string title;  ///< the heading above it
    std::vector<std::string> columns;
    std::vector<std::vector<std::string>> rows;
    std::string note;  ///< below it, may be empty
};

/// Where tables go: standard output, FOLDER/NAME.csv for each, and one file of all as Markdown.
class Report {
public:
    /// @param markdown name of that file in the folder; what it held before is replaced
    Report(std::string folder, const std::string& markdown);
    ~Report();
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    /// False when the Markdown file cannot be written.
    bool isOpen() const { return mMarkdown != nullptr; }
    /// False when the CSV file cannot be written.
    bool add(const Table& table);
    /// A paragraph above the next table.
    void say(const std::string& text);

private:
    std::string mFolder;
    std::FILE* mMarkdown = nullptr;
};

}  // namespace zv::bench
