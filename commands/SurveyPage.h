// The page that shows what a survey found: one HTML file that needs no other.
#pragma once

#include <string>
#include <vector>

namespace quoin::commands {

/// Texts are UTF-8 as they are; the page escapes them.
struct SurveyPage {
  struct Figure {
    std::string value;
    std::string what;
  };
  struct Picture {
    std::string type;   // "image/svg+xml"
    std::string bytes;  // the file's
    std::string alt;
  };
  struct Table {
    std::vector<std::string> head;
    std::vector<std::vector<std::string>> rows;
    std::vector<std::string> foot;  // sums; empty for none
    /// From this column on there are numbers.
    std::size_t firstNumber = 0;
  };
  struct Section {
    std::string title;
    std::vector<Picture> pictures;
    std::vector<Table> tables;
    std::vector<std::string> sentences;
    std::vector<std::string> items;
  };

  std::string title;
  std::string subtitle;
  std::vector<Figure> figures;
  std::vector<Section> sections;
};

/// The same page gives the same bytes.
std::string surveyHtml(const SurveyPage& page);

}  // namespace quoin::commands
