/* Spec file grammar.  The actions build SpecNode objects into the graph that
   readSpecFile names.  The token numbers are fixed; keep them when adding
   tokens. */
%define api.prefix {spec}
%define parse.error simple
%locations

%code requires {
#include <cstdlib>
}

%code {
#include <cassert>
#include <cstdio>
#include <cstring>
#include <memory>

#include "spec/SpecGraphModel.h"
#include "spec/SpecLexer.h"
#include "spec/SpecReader.h"

namespace {

SpecGraphModel* theSpecGraph = nullptr;
SpecNode* currentProduct = nullptr;
SpecNode* currentImage = nullptr;
SpecNode* currentSubsys = nullptr;
char* mapping = nullptr;
char* rules = nullptr;
int PrereqWordsSeen = 0;

void traceRule(int rule) {
  if (specDebug) std::printf("\nReduce %d: %s\n", rule, specRuleText(rule));
}

// Takes ownership of text: stores it with setter on node and frees it.
void store(SpecNode* node, void (SpecNode::*setter)(const std::string&), char* text) {
  assert(node && "spec.y");
  (node->*setter)(text);
  std::free(text);
}

void addRule(const char* keyword, char* words) {
  char* entry = BuildString(keyword, " ", words);
  char* joined = BuildString(rules, "\n", entry);
  std::free(entry);
  std::free(words);
  std::free(rules);
  rules = joined;
}

char* quoted(const char* quote, char* inner) {
  std::string s = std::string(quote) + (inner ? inner : "") + quote;
  std::free(inner);
  return strdup(s.c_str());
}

// Words of one item joined across lines keep the line break; only an exp
// item keeps lines (a mapping has one expression per line), the others read
// as one line.
char* oneLine(char* text) {
  for (char* p = text; *p; ++p)
    if (*p == '\n') *p = ' ';
  return text;
}

void clearCollected() {
  std::free(mapping);
  std::free(rules);
  mapping = rules = nullptr;
}

}  // namespace

#define R(n) traceRule(n)

// Every token passes here on its way to the parser, for the trace.
static int tracedLex() {
  int token = speclex();
  if (specDebug) std::printf("\nToken %d (%s)\n", token, specTokenName(token));
  return token;
}
#undef yylex
#define yylex tracedLex
}

%union {
  char* str;
}

%token <str> WORD 257
%token IDENTIFIER 258
%token DOUBLEQUOTE 259
%token SINGLEQUOTE 260
%token NL 261
%token PRODUCT 262
%token ENDPRODUCT 263
%token IMAGE 264
%token ENDIMAGE 265
%token SUBSYS 266
%token ENDSUBSYS 267
%token MAINT 268
%token ENDMAINT 269
%token DEFAULT 270
%token REQUIRED 271
%token MINIROOT 272
%token PATCH 273
%token ID 274
%token VERSION 275
%token ORDER 276
%token EXP 277
%token REPLACES 278
%token INCOMPAT 279
%token PREREQ 280
%token UPDATES 281
%token FOLLOWS 282
%token CLIENTONLY 283
%token INPLACE 284

%type <str> words prereqs prereq

%destructor { std::free($$); } <str>

%%

spec : products { R(1); }
     | error { R(2); }
     ;

products : product maint { R(3); }
         | products product { R(4); }
         | products product maint { R(5); }
         ;

product : PRODUCT productname productid productversion images ENDPRODUCT
            { R(6); theSpecGraph->select(currentProduct); }
        | PRODUCT productname productid images ENDPRODUCT
            { R(7); theSpecGraph->select(currentProduct); }
        | PRODUCT productname productid ENDPRODUCT
            { R(8); theSpecGraph->select(currentProduct); }
        ;

productname : WORD
            {
              R(9);
              currentProduct = theSpecGraph->addRoot(theSpecGraph->add($1));
              currentProduct->setSource(specLexerFile(), lineno);
              std::free($1);
            }
            ;

productid : ID words { R(10); store(currentProduct, &SpecNode::setId, oneLine($2)); } ;

productversion : VERSION WORD { R(11); std::free($2); } ;

images : image { R(12); }
       | images image { R(13); }
       ;

image : IMAGE imagename imagehead subsyss ENDIMAGE { R(14); }
      | IMAGE imagename imagehead ENDIMAGE { R(15); }
      ;

imagename : WORD
          {
            R(16);
            assert(currentProduct && "spec.y");
            currentImage = theSpecGraph->addChild(currentProduct, theSpecGraph->add($1));
            currentImage->setSource(specLexerFile(), lineno);
            std::free($1);
          }
          ;

imagehead : imageid imageversion imageorder { R(17); }
          | imageid imageorder imageversion { R(18); }
          | imageorder imageid imageversion { R(19); }
          ;

imageid : ID words { R(20); store(currentImage, &SpecNode::setId, oneLine($2)); } ;

imageversion : VERSION words { R(21); store(currentImage, &SpecNode::setVersion, oneLine($2)); } ;

imageorder : %empty { R(22); }
           | ORDER words
             {
               R(23);
               // As atoi: leading blanks, a sign, digits; 0 when there are none.
               long value = std::strtol($2, nullptr, 10);
               if (value > 2147483647L) value = 2147483647L;
               if (value < -2147483647L - 1) value = -2147483647L - 1;
               currentImage->setOrder(static_cast<int>(value));
               std::free($2);
             }
           ;

subsyss : subsys { R(24); }
        | subsyss subsys { R(25); }
        ;

subsys : SUBSYS subsysname subsysitems ENDSUBSYS
       {
         R(26);
         if (mapping) currentSubsys->setMapping(mapping);
         if (rules) currentSubsys->setRules(rules);
         clearCollected();
       }
       ;

subsysname : WORD
           {
             R(27);
             assert(currentImage && "spec.y");
             currentSubsys = theSpecGraph->addChild(currentImage, theSpecGraph->add($1));
             currentSubsys->setSource(specLexerFile(), lineno);
             std::free($1);
             clearCollected();
           }
           ;

subsysitems : subsysitem { R(28); }
            | subsysitems subsysitem { R(29); }
            ;

subsysitem : DEFAULT { R(30); currentSubsys->setDefault(true); }
           | REQUIRED { R(31); currentSubsys->setRequired(true); }
           | MINIROOT { R(32); currentSubsys->setMiniroot(true); }
           | PATCH
             {
               R(33);
               currentSubsys->setPatch(true);
               currentImage->setPatch(true);
               currentProduct->setPatch(true);
             }
           | ID words { R(34); store(currentSubsys, &SpecNode::setId, oneLine($2)); }
           | EXP words
             {
               R(35);
               char* joined = BuildString(mapping, "\n", $2);
               std::free($2);
               std::free(mapping);
               mapping = joined;
             }
           | REPLACES words { R(36); addRule("replaces", oneLine($2)); }
           | FOLLOWS words { R(37); addRule("follows", oneLine($2)); }
           | INCOMPAT words { R(38); addRule("incompat", oneLine($2)); }
           | UPDATES words { R(39); addRule("updates", oneLine($2)); }
           | PREREQ '(' prereqs ')'
             {
               R(40);
               char* open = BuildString("prereq (\n", " ", $3);
               // The closing parenthesis stands alone, also after a group
               // that is not whole triples, so that it reads back as one.
               std::size_t n = std::strlen(open);
               char* group = BuildString(open, "", n && open[n - 1] == '\n' ? ")" : "\n)");
               std::free(open);
               std::free($3);
               char* joined = BuildString(rules, "\n", group);
               std::free(group);
               std::free(rules);
               rules = joined;
             }
           | CLIENTONLY { R(41); }
           | INPLACE { R(42); }
           ;

prereqs : prereq { R(43); $$ = $1; }
        | prereqs prereq
          {
            R(44);
            $$ = BuildString($1, " ", $2);
            std::free($1);
            std::free($2);
          }
        ;

prereq : WORD
       {
         R(45);
         // Words come in triples (subsystem, low and high version), one
         // triple to a line; the count runs on across groups on purpose.
         std::string value;
         if (++PrereqWordsSeen == 3) {
           value = std::string($1) + "\n";
           PrereqWordsSeen = 0;
         } else if (PrereqWordsSeen == 1) {
           value = std::string("   ") + $1;
         } else {
           value = $1;
         }
         std::free($1);
         $$ = strdup(value.c_str());
       }
       ;

maint : %empty { R(46); }
      | MAINT maintname ENDMAINT { R(47); }
      ;

maintname : WORD { R(48); std::free($1); } ;

words : WORD { R(49); $$ = $1; }
      | words WORD
        {
          R(50);
          $$ = BuildString($1, @2.first_line != @1.last_line ? "\n" : " ", $2);
          std::free($1);
          std::free($2);
        }
      | DOUBLEQUOTE words DOUBLEQUOTE { R(51); $$ = quoted("\"", $2); }
      | DOUBLEQUOTE DOUBLEQUOTE { R(52); $$ = strdup("\"\""); }
      | SINGLEQUOTE words SINGLEQUOTE { R(53); $$ = quoted("'", $2); }
      | SINGLEQUOTE SINGLEQUOTE { R(54); $$ = strdup("''"); }
      ;

/* Numbered after the others so that theirs stay as they are: an empty file
   (the writer's text for a hierarchy without products) reads cleanly. */
spec : %empty { R(55); } ;

%%

namespace {

const char* const kRuleTexts[] = {
    "-no such reduction-",
    "spec : products",
    "spec : error",
    "products : product maint",
    "products : products product",
    "products : products product maint",
    "product : PRODUCT productname productid productversion images ENDPRODUCT",
    "product : PRODUCT productname productid images ENDPRODUCT",
    "product : PRODUCT productname productid ENDPRODUCT",
    "productname : WORD",
    "productid : ID words",
    "productversion : VERSION WORD",
    "images : image",
    "images : images image",
    "image : IMAGE imagename imagehead subsyss ENDIMAGE",
    "image : IMAGE imagename imagehead ENDIMAGE",
    "imagename : WORD",
    "imagehead : imageid imageversion imageorder",
    "imagehead : imageid imageorder imageversion",
    "imagehead : imageorder imageid imageversion",
    "imageid : ID words",
    "imageversion : VERSION words",
    "imageorder :",
    "imageorder : ORDER words",
    "subsyss : subsys",
    "subsyss : subsyss subsys",
    "subsys : SUBSYS subsysname subsysitems ENDSUBSYS",
    "subsysname : WORD",
    "subsysitems : subsysitem",
    "subsysitems : subsysitems subsysitem",
    "subsysitem : DEFAULT",
    "subsysitem : REQUIRED",
    "subsysitem : MINIROOT",
    "subsysitem : PATCH",
    "subsysitem : ID words",
    "subsysitem : EXP words",
    "subsysitem : REPLACES words",
    "subsysitem : FOLLOWS words",
    "subsysitem : INCOMPAT words",
    "subsysitem : UPDATES words",
    "subsysitem : PREREQ '(' prereqs ')'",
    "subsysitem : CLIENTONLY",
    "subsysitem : INPLACE",
    "prereqs : prereq",
    "prereqs : prereqs prereq",
    "prereq : WORD",
    "maint :",
    "maint : MAINT maintname ENDMAINT",
    "maintname : WORD",
    "words : WORD",
    "words : words WORD",
    "words : DOUBLEQUOTE words DOUBLEQUOTE",
    "words : DOUBLEQUOTE DOUBLEQUOTE",
    "words : SINGLEQUOTE words SINGLEQUOTE",
    "words : SINGLEQUOTE SINGLEQUOTE",
    "spec :",
};

const char* const kTokenNames[] = {
    "WORD",       "IDENTIFIER", "DOUBLEQUOTE", "SINGLEQUOTE", "NL",       "PRODUCT",
    "ENDPRODUCT", "IMAGE",      "ENDIMAGE",    "SUBSYS",      "ENDSUBSYS", "MAINT",
    "ENDMAINT",   "DEFAULT",    "REQUIRED",    "MINIROOT",    "PATCH",    "ID",
    "VERSION",    "ORDER",      "EXP",         "REPLACES",    "INCOMPAT", "PREREQ",
    "UPDATES",    "FOLLOWS",    "CLIENTONLY",  "INPLACE",
};

}  // namespace

const char* specRuleText(int rule) {
  const int n = sizeof kRuleTexts / sizeof kRuleTexts[0];
  return rule > 0 && rule < n ? kRuleTexts[rule] : kRuleTexts[0];
}

const char* specTokenName(int token) {
  const int n = sizeof kTokenNames / sizeof kTokenNames[0];
  if (token == 0) return "end-of-file";
  if (token == '(') return "'('";
  if (token == ')') return "')'";
  if (token >= WORD && token < WORD + n) return kTokenNames[token - WORD];
  return "-unknown-";
}

namespace {

// Parses what specLexerBegin and the first push set up into graph.
void parseInto(SpecGraphModel& graph, SpecReadReport* result) {
  result->entered = true;
  lineno = 1;
  PrereqWordsSeen = 0;
  theSpecGraph = &graph;
  currentProduct = currentImage = currentSubsys = nullptr;
  clearCollected();

  specparse();

  clearCollected();
  theSpecGraph = nullptr;
  currentProduct = currentImage = currentSubsys = nullptr;
  result->prereqCarry = PrereqWordsSeen;
  specLexerFillReport(result);
  specLexerEnd();
}

}  // namespace

bool readSpecFile(SpecGraphModel& graph, Reporter& reporter, const std::string& path,
                  SpecReadReport* report) {
  specLexerBegin(&reporter, path);
  SpecReadReport result;
  if (pushinput(path.c_str()) != 0) {
    specLexerFillReport(&result);
    result.includeFailures = 0;
    specLexerEnd();
    if (report) *report = result;
    return false;
  }
  parseInto(graph, &result);
  if (report) *report = result;
  return true;
}

void readSpecText(SpecGraphModel& graph, Reporter& reporter, const std::string& name,
                  const std::string& text, SpecReadReport* report) {
  specLexerBegin(&reporter, name, false);
  SpecReadReport result;
  if (pushtext(name, text) == 0) parseInto(graph, &result);
  else specLexerEnd();
  if (report) *report = result;
}
