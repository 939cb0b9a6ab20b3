#include "tools/report/page.h"

#include <gmock/gmock.h>

#include "tests/tools/test_pictures.h"

namespace {

using testing::HasSubstr;
using testing::Not;

// scripts/check_page.py opens pages in a browser; this is about what a browser would obey.
TEST(Page, ForeignTextsStayTexts) {
  const std::string bad = "</script><script>alert(1)</script> {{title}} \"&\x1b[2J";
  tool::Page page;
  page.title = bad;
  page.facts = {{bad, bad}};
  page.pictures = {{bad, gradient_picture(4, 2)}, {"b", gradient_picture(4, 2)}};
  page.tables = {{bad, {bad, "x"}, {{bad, bad}}}};
  page.curves = {{bad, bad, bad, false, false, {1, 2}, {{bad, {1, std::nan("")}}}}};
  const std::string html = tool::page_html(page);
  EXPECT_THAT(html, Not(HasSubstr("<script>alert")));
  EXPECT_THAT(html, Not(HasSubstr("\x1b")));
  EXPECT_THAT(html, HasSubstr("<h1>&lt;/script&gt;&lt;script&gt;alert(1)&lt;/script&gt; {{title}} "
                              "&quot;&amp;\\x1b[2J</h1>"));
  EXPECT_THAT(html, HasSubstr("\"name\": \"\\u003c/script>"));
  EXPECT_THAT(html, HasSubstr("default-src 'none'"));
}

TEST(Table, StandsInColumnsAndInCsv) {
  const tool::Table table{"", {"a key", "x,y"}, {{"\xc3\xa4", "1.5"}, {"\"q\"", "-12"}}};
  EXPECT_EQ(tool::table_text(table),
            "a key  x,y\n"
            "\xc3\xa4      1.5\n"
            "\"q\"    -12\n");
  EXPECT_EQ(tool::table_csv(table), "a key,\"x,y\"\n\xc3\xa4,1.5\n\"\"\"q\"\"\",-12\n");
}

}  // namespace
