// The rows of the wire table for output documents.
#include "tests/api/wire_row.h"

namespace kova::wire {
namespace {

// The text as its units, with commas between them.
Outcome xml() {
  int code = kUntouched;
  const unsigned short* text = GetXmlUtf16("report", &code);
  if (!text) return outcome(code, "none");
  std::string units;
  for (; *text != 0; ++text) units += (units.empty() ? "" : ",") + std::to_string(*text);
  return {code, units};
}

Outcome image() {
  int code = kUntouched;
  int size = kUntouched;
  char* type = nullptr;
  char* const bytes = GetImage("chart", "png", &size, &type, &code);
  const std::string shownBytes = bytes ? std::string(bytes, bytes + std::max(size, 0)) : "none";
  const Outcome result = outcome(code, size, shownBytes.c_str(), static_cast<const char*>(type));
  FreeString(bytes);
  FreeString(type);
  return result;
}

Outcome graphic() {
  GetGraphic("chart.png");
  return {};
}

}  // namespace

std::vector<Row> documentRows() {
  return {
      tells("PostKovaOutput", [] { return PostKovaOutput("<p>\0</p>", 8); },
            {.code = 6, .texts = {std::string("<p>\0</p>", 8)}}),
      tells("CreateXPathDictionary", [] { return CreateXPathDictionary("dictionary"); },
            {.code = 14, .texts = {"dictionary"}}),
      tells("RemoveXPathHandle", [] { return RemoveXPathHandle("report"); }, {.code = 15, .texts = {"report"}}),
      asksStringList("EvaluateXPath",
                     [] { return stringListOf(EvaluateXPath, "report", "/outputTree", "//cell/@text"); },
                     {.code = 16, .texts = {"report", "/outputTree", "//cell/@text"}}),
      makeRow("GetXmlUtf16", kTransportCode, xml, {.code = 20, .texts = {"report"}}, {.wide = u"<a>\u20AC"},
              "60,97,62,8364", "", "'none'"),
      makeRow(
          "GetXmlUtf16Length", kBareNumber, [] { return outcome(0, GetXmlUtf16Length()); }, {.code = 243},
          {.longs = {4}}, "4", "0", "0"),
      makeRow("GetImage", kTransportCode, image, {.code = 21, .texts = {"chart", "png"}},
              {.longs = {4}, .texts = {"image/png"}, .binary = "PNG1"}, "4 'PNG1' 'image/png'", "0 '' null",
              "-77 'none' null"),
      asksStringList("GetOMSTagList", [] { return stringListOf(GetOMSTagList); }, {.code = 23}),
      asksStringList("GetHandleList", [] { return stringListOf(GetHandleList); }, {.code = 24}),
      {"GetGraphic", kBareNumber, graphic, {.code = 201, .texts = {"chart.png"}}},
      tells("SetGraphicsLabel", [] { return SetGraphicsLabel("Charts", "Body mass"); },
            {.code = 231, .texts = {"Charts", "Body mass"}}),
  };
}

}  // namespace kova::wire
