#include "appcast/notes_text.h"

#include <gtest/gtest.h>

#include <string>

namespace keyvora::appcast {
namespace {

struct NotesCase {
  const char* html;
  const char* text;
};

class NotesTextTest : public testing::TestWithParam<NotesCase> {};

TEST_P(NotesTextTest, IsReduced) {
  EXPECT_EQ(plainNotes(GetParam().html), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, NotesTextTest,
    testing::Values(NotesCase{"", ""},                                                        //
                    NotesCase{"  a \n\t b  ", "a b"},                                         //
                    NotesCase{"<p>one</p><p>two</p>", "one\n\ntwo"},                          //
                    NotesCase{"<h2>New</h2>\n<ul><li>a</li><li>b <b>bold</b></li></ul>done",  //
                              "New\n\n• a\n• b bold\n\ndone"},                                //
                    NotesCase{"a<br>b<br/>c<BR><br>d", "a\nb\nc\n\nd"},                       //
                    NotesCase{"<div>a</div><div>b</div>", "a\nb"},                            //
                    NotesCase{"<td>1</td><td>2</td>", "1 2"},                                 //
                    NotesCase{"Bob&#8217;s &amp; &lt;i&gt; &#x41;&nbsp;&hellip;", "Bob’s & <i> A …"},
                    NotesCase{"&unknown; &; & &#xZZ; &#0; &#xD800; &#99999999999;",
                              "&unknown; &; & &#xZZ; � � &#99999999999;"},
                    NotesCase{"a < b and c > d", "a < b and c > d"},  //
                    NotesCase{"<html><head><title>T</title><style>p{}</style></head><body>x", "x"},
                    NotesCase{"x<script>alert('<p>')</script>y", "xy"},       //
                    NotesCase{"x<!-- <p>hidden</p> -->y", "xy"},              //
                    NotesCase{"<!DOCTYPE html><p class=\"a\">é⌥</p>", "é⌥"},  //
                    NotesCase{"cut <a href=\"", "cut"},                       //
                    NotesCase{"cut <script>", "cut"}));

TEST(NotesTextTest, IsQuickForAMegabyteOfAnything) {
  for (const auto* piece : {"<", "<a", "&", "&#", "<script>", "<!--", "</", "<li>"}) {
    std::string html;
    while (html.size() < 1'000'000) html += piece;
    EXPECT_LE(plainNotes(html).size(), 2 * html.size()) << piece;
  }
}

}  // namespace
}  // namespace keyvora::appcast
