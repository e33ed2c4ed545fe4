# cmake -DPAGE=page.html -DOUTPUT=PageText.cpp -P embed-page.cmake: turns the page into C++, in two
# parts: what comes before the library's document, and what comes after it. Puts in the page's content
# security policy, which allows its own script and styles by their hashes, and nothing else.
file(READ "${PAGE}" page)

# Sets `out` to the base64 form of the SHA-256 hash of the text between two marks.
function(hash_between first last out)
  string(FIND "${page}" "${first}" start)
  string(LENGTH "${first}" length)
  math(EXPR start "${start} + ${length}")
  string(SUBSTRING "${page}" ${start} -1 text)
  string(FIND "${text}" "${last}" end)
  string(SUBSTRING "${text}" 0 ${end} text)
  string(SHA256 digits "${text}")
  set(alphabet "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  set(base64 "")
  # Three hexadecimal digits are two characters. 64 digits and two zeros make 44, the last of them "=".
  foreach(i RANGE 0 63 3)
    string(SUBSTRING "${digits}00" ${i} 3 three)
    math(EXPR high "0x${three} >> 6")
    math(EXPR low "0x${three} & 63")
    string(SUBSTRING "${alphabet}" ${high} 1 high)
    string(SUBSTRING "${alphabet}" ${low} 1 low)
    string(APPEND base64 "${high}${low}")
  endforeach()
  string(SUBSTRING "${base64}" 0 43 base64)
  set(${out} "sha256-${base64}=" PARENT_SCOPE)
endfunction()
hash_between("<style>" "</style>" style)
hash_between("<script>" "</script>" script)

set(policy "default-src 'none'; style-src '${style}'; script-src '${script}'; base-uri 'none'; form-action 'none'")
string(REPLACE "<!-- The build puts the content security policy here. -->"
       "<meta http-equiv=\"Content-Security-Policy\" content=\"${policy}\">" page "${page}")

set(mark "<script type=\"application/json\" id=\"library\">\n")
string(FIND "${page}" "${mark}" start)
string(LENGTH "${mark}" length)
math(EXPR start "${start} + ${length}")
string(SUBSTRING "${page}" 0 ${start} before)
string(SUBSTRING "${page}" ${start} -1 after)
string(FIND "${after}" "</script>" end)
string(SUBSTRING "${after}" ${end} -1 after)

function(as_literal text out)
  string(REPLACE "\\" "\\\\" text "${text}")
  string(REPLACE "\"" "\\\"" text "${text}")
  string(REPLACE "\n" "\\n\"\n    \"" text "${text}")
  set(${out} "\"${text}\"" PARENT_SCOPE)
endfunction()
as_literal("${before}" before)
as_literal("${after}" after)
file(WRITE "${OUTPUT}" "#include \"tool/Page.h\"

namespace cairnset {

const std::string_view kPageBeforeDocument =
    ${before};
const std::string_view kPageAfterDocument =
    ${after};

}  // namespace cairnset
")
