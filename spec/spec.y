/* Spec file grammar.  The actions build SpecNode objects into the graph that
   readSpecFile names.  The token numbers are fixed; keep them when adding
   tokens. */
%define api.prefix {spec}
%define parse.error simple
%locations
%token-table

%code requires {
#include <cstdlib>
#include <string>
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
// What the current subsystem's exp and rule items add up to (null: none).
std::unique_ptr<std::string> mapping;
std::unique_ptr<std::string> rules;
int PrereqWordsSeen = 0;

void traceRule(int rule) {
  if (specDebug) std::printf("\nReduce %d: %s\n", rule, specRuleText(rule));
}

// Values grow by appending in place: a value of a hundred thousand words
// must not be copied once per word.
using Text = std::unique_ptr<std::string>;

// Takes ownership of text and stores it with setter on node.
void store(SpecNode* node, void (SpecNode::*setter)(const std::string&), std::string* text) {
  Text owned(text);
  assert(node && "spec.y");
  (node->*setter)(*owned);
}

void collect(Text& into, const std::string& item) {
  if (!into) into = std::make_unique<std::string>();
  joinInto(*into, "\n", item);
}

void addRule(const char* keyword, std::string* words) {
  Text owned(words);
  std::string entry = keyword;
  joinInto(entry, " ", *owned);
  collect(rules, entry);
}

std::string* quoted(const char* quote, std::string* inner) {
  Text owned(inner);
  return new std::string(quote + *owned + quote);
}

// Words of one item joined across lines keep the line break; only an exp
// item keeps lines (a mapping has one expression per line), the others read
// as one line.
std::string* oneLine(std::string* text) {
  for (char& c : *text)
    if (c == '\n') c = ' ';
  return text;
}

void clearCollected() {
  mapping.reset();
  rules.reset();
}

}  // namespace

// Every action starts with R(): it traces the rule being reduced by the
// number bison gives it in its report (yyn, the rule the parser is reducing,
// counts from 2: bison keeps 0 and 1 for itself).
#define R() traceRule(yyn - 1)

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
  std::string* text;
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

%type <text> words prereqs prereq

%destructor { std::free($$); } <str>
%destructor { delete $$; } <text>

%%

spec : products { R(); }
     | error { R(); }
     ;

products : product maint { R(); }
         | products product { R(); }
         | products product maint { R(); }
         ;

product : PRODUCT productname productid productversion images ENDPRODUCT
            { R(); theSpecGraph->select(currentProduct); }
        | PRODUCT productname productid images ENDPRODUCT
            { R(); theSpecGraph->select(currentProduct); }
        | PRODUCT productname productid ENDPRODUCT
            { R(); theSpecGraph->select(currentProduct); }
        ;

productname : WORD
            {
              R();
              currentProduct = theSpecGraph->addRoot(theSpecGraph->add($1));
              currentProduct->setSource(specLexerFile(), lineno);
              std::free($1);
            }
            ;

productid : ID words { R(); store(currentProduct, &SpecNode::setId, oneLine($2)); } ;

productversion : VERSION WORD { R(); std::free($2); } ;

images : image { R(); }
       | images image { R(); }
       ;

image : IMAGE imagename imagehead subsyss ENDIMAGE { R(); }
      | IMAGE imagename imagehead ENDIMAGE { R(); }
      ;

imagename : WORD
          {
            R();
            assert(currentProduct && "spec.y");
            currentImage = theSpecGraph->addChild(currentProduct, theSpecGraph->add($1));
            currentImage->setSource(specLexerFile(), lineno);
            std::free($1);
          }
          ;

imagehead : imageid imageversion imageorder { R(); }
          | imageid imageorder imageversion { R(); }
          | imageorder imageid imageversion { R(); }
          ;

imageid : ID words { R(); store(currentImage, &SpecNode::setId, oneLine($2)); } ;

imageversion : VERSION words { R(); store(currentImage, &SpecNode::setVersion, oneLine($2)); } ;

imageorder : %empty { R(); }
           | ORDER words
             {
               R();
               // As atoi: leading blanks, a sign, digits; 0 when there are none.
               Text owned($2);
               long value = std::strtol(owned->c_str(), nullptr, 10);
               if (value > 2147483647L) value = 2147483647L;
               if (value < -2147483647L - 1) value = -2147483647L - 1;
               currentImage->setOrder(static_cast<int>(value));
             }
           ;

subsyss : subsys { R(); }
        | subsyss subsys { R(); }
        ;

subsys : SUBSYS subsysname subsysitems ENDSUBSYS
       {
         R();
         if (mapping) currentSubsys->setMapping(*mapping);
         if (rules) currentSubsys->setRules(*rules);
         clearCollected();
       }
       ;

subsysname : WORD
           {
             R();
             assert(currentImage && "spec.y");
             currentSubsys = theSpecGraph->addChild(currentImage, theSpecGraph->add($1));
             currentSubsys->setSource(specLexerFile(), lineno);
             std::free($1);
             clearCollected();
           }
           ;

subsysitems : subsysitem { R(); }
            | subsysitems subsysitem { R(); }
            ;

subsysitem : DEFAULT { R(); currentSubsys->setDefault(true); }
           | REQUIRED { R(); currentSubsys->setRequired(true); }
           | MINIROOT { R(); currentSubsys->setMiniroot(true); }
           | PATCH
             {
               R();
               currentSubsys->setPatch(true);
               currentImage->setPatch(true);
               currentProduct->setPatch(true);
             }
           | ID words { R(); store(currentSubsys, &SpecNode::setId, oneLine($2)); }
           | EXP words
             {
               R();
               Text owned($2);
               collect(mapping, *owned);
             }
           | REPLACES words { R(); addRule("replaces", oneLine($2)); }
           | FOLLOWS words { R(); addRule("follows", oneLine($2)); }
           | INCOMPAT words { R(); addRule("incompat", oneLine($2)); }
           | UPDATES words { R(); addRule("updates", oneLine($2)); }
           | PREREQ '(' prereqs ')'
             {
               R();
               Text owned($3);
               std::string group = "prereq (\n " + *owned;
               // The closing parenthesis stands alone, also after a group
               // that is not whole triples, so that it reads back as one.
               group += group.back() == '\n' ? ")" : "\n)";
               collect(rules, group);
             }
           | CLIENTONLY { R(); }
           | INPLACE { R(); }
           ;

prereqs : prereq { R(); $$ = $1; }
        | prereqs prereq
          {
            R();
            Text owned($2);
            joinInto(*$1, " ", *owned);
            $$ = $1;
          }
        ;

prereq : WORD
       {
         R();
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
         $$ = new std::string(std::move(value));
       }
       ;

maint : %empty { R(); }
      | MAINT maintname ENDMAINT { R(); }
      ;

maintname : WORD { R(); std::free($1); } ;

words : WORD { R(); $$ = new std::string($1); std::free($1); }
      | words WORD
        {
          R();
          joinInto(*$1, @2.first_line != @1.last_line ? "\n" : " ", $2);
          std::free($2);
          $$ = $1;
        }
      | DOUBLEQUOTE words DOUBLEQUOTE { R(); $$ = quoted("\"", $2); }
      | DOUBLEQUOTE DOUBLEQUOTE { R(); $$ = new std::string("\"\""); }
      | SINGLEQUOTE words SINGLEQUOTE { R(); $$ = quoted("'", $2); }
      | SINGLEQUOTE SINGLEQUOTE { R(); $$ = new std::string("''"); }
      ;

/* An empty file (the writer's text for a hierarchy without products) reads
   cleanly.  Last, so that the other rules keep the numbers traces show. */
spec : %empty { R(); } ;

%%

namespace {

// Bison's rule texts, in its numbering; 0 is no rule.
const char* const kRuleTexts[] = {
    "-no such reduction-",
#include "spec/specRules.inc"
};
static_assert(sizeof kRuleTexts / sizeof kRuleTexts[0] == YYNRULES,
              "one rule text for each of bison's rules");

}  // namespace

const char* specRuleText(int rule) {
  const int n = sizeof kRuleTexts / sizeof kRuleTexts[0];
  return rule > 0 && rule < n ? kRuleTexts[rule] : kRuleTexts[0];
}

// Bison's names for the tokens the grammar declares; its own symbols (the
// end, error, undefined) are not tokens a trace names.
const char* specTokenName(int token) {
  if (token == 0) return "end-of-file";
  yysymbol_kind_t symbol = YYTRANSLATE(token);
  if (symbol <= YYSYMBOL_YYUNDEF || symbol >= YYNTOKENS) return "-unknown-";
  return yytname[symbol];
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

Outcome readSpecFile(SpecGraphModel& graph, Reporter& reporter, const std::string& path,
                     SpecReadReport* report) {
  specLexerBegin(&reporter, path);
  SpecReadReport result;
  if (pushinput(path.c_str()) != 0) {
    specLexerFillReport(&result);
    result.includeFailures = 0;
    specLexerEnd();
    if (report) *report = result;
    return Outcome::error(result.lastMessage);
  }
  parseInto(graph, &result);
  if (report) *report = result;
  return Outcome::success();
}

void readSpecText(SpecGraphModel& graph, Reporter& reporter, const std::string& name,
                  const std::string& text, SpecReadReport* report) {
  specLexerBegin(&reporter, name, false);
  SpecReadReport result;
  if (pushtext(name, text) == 0) parseInto(graph, &result);
  else specLexerEnd();
  if (report) *report = result;
}
