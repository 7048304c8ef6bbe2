#include "bench/Report.h"

#include <algorithm>
#include <utility>

namespace zv::bench {

namespace {

using Row = std::vector<std::string>;

void writeRow(std::FILE* file, const Row& row, const char* before, const char* between, const char* after) {
    std::fputs(before, file);
    for (std::size_t i = 0; i < row.size(); ++i) {
        std::fprintf(file, "%s%s", i > 0 ? between : "", row[i].c_str());
    }
    std::fputs(after, file);
}

void print(const Table& table) {
    std::vector<std::size_t> widths(table.columns.size());
    const auto widen = [&](const Row& row) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], row[i].size());
        }
    };
    const auto line = [&](const Row& row) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            const int width = static_cast<int>(widths[i]);
            std::printf(i == 0 ? "  %-*s" : "  %*s", width, row[i].c_str());
        }
        std::printf("\n");
    };
    widen(table.columns);
    std::for_each(table.rows.begin(), table.rows.end(), widen);
    std::printf("\n%s\n", table.title.c_str());
    line(table.columns);
    std::for_each(table.rows.begin(), table.rows.end(), line);
    std::fflush(stdout);
}

void writeMarkdown(std::FILE* file, const Table& table) {
    std::fprintf(file, "### %s\n\n", table.title.c_str());
    writeRow(file, table.columns, "| ", " | ", " |\n");
    writeRow(file, Row(table.columns.size(), "---"), "| ", " | ", " |\n");
    for (const Row& row : table.rows) {
        writeRow(file, row, "| ", " | ", " |\n");
    }
    std::fprintf(file, "\n%s%s", table.note.c_str(), table.note.empty() ? "" : "\n\n");
    std::fflush(file);
}

}  // namespace

std::string number(double value, int places) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", places, value);
    return text;
}

std::string verdict(double value, double most) {
    if (value < 0) {
        return {};
    }
    return value <= most ? "met" : "not met";
}

Report::Report(std::string folder, const std::string& markdown)
    : mFolder(std::move(folder)), mMarkdown(std::fopen((mFolder + "/" + markdown).c_str(), "w")) {}

Report::~Report() {
    if (mMarkdown != nullptr) {
        std::fclose(mMarkdown);
    }
}

bool Report::add(const Table& table) {
    print(table);
    if (mMarkdown != nullptr) {
        writeMarkdown(mMarkdown, table);
    }
    std::FILE* file = std::fopen((mFolder + "/" + table.name + ".csv").c_str(), "w");
    if (file == nullptr) {
        return false;
    }
    writeRow(file, table.columns, "\"", "\",\"", "\"\n");
    for (const Row& row : table.rows) {
        writeRow(file, row, "\"", "\",\"", "\"\n");
    }
    return std::fclose(file) == 0;
}

void Report::say(const std::string& text) {
    std::printf("%s\n", text.c_str());
    if (mMarkdown != nullptr) {
        std::fprintf(mMarkdown, "%s\n\n", text.c_str());
    }
}

}  // namespace zv::bench
