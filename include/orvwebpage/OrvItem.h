#pragma once

#include <cstdint>

#include "orvwebpage/OrvExport.h"

// The records of a parsed page. The analysers read these fields directly, so
// the fields, their order, widths and signedness are a contract with whatever
// builds the tree; the reserved areas belong to the builder. Pointers are
// native width, so the offsets follow the platform's natural alignment.
//
// Every name, value and text is a pointer with a signed length; a negative
// length means the text is NUL-terminated (see MeasuredLen).

struct var_attr;

// One element or one run of text.
struct var_item {
  uint16_t tag_id;  // kind of element; 0 for text runs
  unsigned char reserved0[26];
  var_attr* attr_list;  // first attribute, null if none
  unsigned char reserved1[4];
  var_item* next;    // next sibling
  var_item* child;   // first child
  var_item* parent;  // enclosing item, null at the top level
  int32_t name_len;
  char* name;  // may be null
  unsigned char reserved2[4];
  int32_t text_len;
  char* text;  // the characters of a text run
};

// One attribute of an item, chained from var_item::attr_list.
struct var_attr {
  uint16_t attr_id;
  unsigned char reserved0[30];
  var_attr* next;
  unsigned char reserved1[8];
  int32_t name_len;
  char* name;  // may be null
  unsigned char reserved2[4];
  int32_t value_len;
  char* value;  // may be null
};

// An item with its depth; top-level items have depth 1.
struct var_item_pos {
  var_item* item;
  int32_t depth;
};

// The only numbers the analysers test.
constexpr uint16_t ORV_TAG_LINK = 60;       // link element; text below it is link text
constexpr uint16_t ORV_TAG_NO_TEXT_A = 87;  // text directly below is never visible
constexpr uint16_t ORV_TAG_NO_TEXT_B = 92;
constexpr uint16_t ORV_TAG_NO_TEXT_C = 93;
constexpr uint16_t ORV_ATTR_LINK_TARGET = 14;  // link target of ORV_TAG_LINK

// Called once per item by WalkItems.
typedef void (*OrvItemVisitor)(var_item* item, int32_t depth, void* user);

// None of these allocates or changes a record.

// The stored length if 0 or more; else the bytes before the first NUL (0 for null).
ORV_API int32_t MeasuredLen(const char* text, int32_t length);

// Equal measured lengths and every byte pair equal or the same ASCII letter.
ORV_API bool CapsEqual(const char* a, int32_t aLength, const char* b, int32_t bLength);

// Depth-first, parents before children, siblings in order; the top-level
// siblings of first are walked too, at the given depth. The height of the
// tree does not grow the call stack.
ORV_API void WalkItems(var_item* first, int32_t depth, OrvItemVisitor visit, void* user);

// First attribute whose name matches case-blindly, or null.
ORV_API var_attr* FindAttrByName(var_attr* head, const char* name, int32_t length);

// First attribute with id ORV_ATTR_LINK_TARGET, or null.
ORV_API var_attr* FindLinkAttr(var_attr* head);

// Same name, and values equal once blanks at both ends are trimmed (case-blind).
// Two nulls are equal; a null and an attribute are not.
ORV_API bool IsEqualAttr(const var_attr* a, const var_attr* b);

// Trims 0x20 only, at both ends, in place. A length of 0 or below leaves an
// empty text whose pointer has moved by the length.
ORV_API void TrimBlanks(const char*& text, int32_t& length);
ORV_API void TrimBlanks(char*& text, int32_t& length);

// Nearest proper ancestor with that tag, or null.
ORV_API var_item* FindAncestor(var_item* item, uint16_t tag);

// As FindAncestor; the depth drops by one per step climbed. item is null if none.
ORV_API var_item_pos FindAncestorPos(const var_item_pos& pos, uint16_t tag);

// A "$text" run of tag 0 with text, whose parent exists and is none of the
// no-text kinds.
ORV_API bool IsVisibleText(var_item* item);

// Bytes that are none of blank, line feed and tab; 0 for a length below 1.
ORV_API int32_t CountNonBlank(const char* text, int32_t length);
