/*
 * ldap_reader.c -- what somebody writes in an afternoon with libldap's LDIF reader. It keeps no comments, checks
 * nothing and knows no rules; it is here to measure against.
 *
 *   ldap_reader read OLD NEW         reads both files into tables
 *   ldap_reader difference OLD NEW   prints the values that are on one side only
 *   ldap_reader merge OLD NEW OUT    writes NEW with the entries and values of OLD that it lacks
 *
 * Two DNs are the same when they are but for letter case and blanks after separators.
 */
#include <ctype.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <unistd.h>

#include <ldap.h>
#include <ldif.h> /* takes FILE for declared */

typedef struct value {
  struct berval type;
  struct berval value;
} value;

typedef struct entry {
  char* record; /* owns what dn and values point into */
  char* key;
  struct berval dn;
  value* values;
  size_t count;
  struct entry* next_in_slot;
} entry;

typedef struct table {
  entry** in_order;
  size_t count;
  size_t room;
  entry** slots;
  size_t slot_count; /* a power of two */
} table;

static void fail(const char* what) {
  perror(what);
  exit(1);
}

static void* checked(void* memory) {
  if (memory == NULL) fail("ldap_reader");
  return memory;
}

static char* key_of(const struct berval* dn) {
  char* key = checked(malloc(dn->bv_len + 1));
  size_t length = 0;
  int after_separator = 1;
  for (size_t i = 0; i < dn->bv_len; ++i) {
    const char c = dn->bv_val[i];
    if (after_separator && c == ' ') continue;
    after_separator = c == ',';
    key[length++] = (char)tolower((unsigned char)c);
  }
  key[length] = '\0';
  return key;
}

/* FNV-1a. */
static size_t hash_of(const char* key) {
  size_t hash = 14695981039346656037u;
  for (; *key != '\0'; ++key) hash = (hash ^ (unsigned char)*key) * 1099511628211u;
  return hash;
}

static entry* find(const table* entries, const char* key) {
  if (entries->slot_count == 0) return NULL;
  entry* found = entries->slots[hash_of(key) & (entries->slot_count - 1)];
  while (found != NULL && strcmp(found->key, key) != 0) found = found->next_in_slot;
  return found;
}

static void link_entry(table* entries, entry* added) {
  entry** slot = &entries->slots[hash_of(added->key) & (entries->slot_count - 1)];
  added->next_in_slot = *slot;
  *slot = added;
}

static void add(table* entries, entry* added) {
  if (entries->count == entries->room) {
    entries->room = entries->room == 0 ? 1024 : 2 * entries->room;
    entries->in_order = checked(realloc(entries->in_order, entries->room * sizeof(entry*)));
    free(entries->slots);
    entries->slot_count = entries->room;
    entries->slots = checked(calloc(entries->slot_count, sizeof(entry*)));
    for (size_t i = 0; i < entries->count; ++i) link_entry(entries, entries->in_order[i]);
  }
  entries->in_order[entries->count++] = added;
  link_entry(entries, added);
}

static void add_value(entry* owner, size_t* room, const value* added) {
  if (owner->count == *room) {
    *room = *room == 0 ? 16 : 2 * *room;
    owner->values = checked(realloc(owner->values, *room * sizeof(value)));
  }
  owner->values[owner->count++] = *added;
}

static int is_type(const struct berval* type, const char* name) {
  return type->bv_len == strlen(name) && strncasecmp(type->bv_val, name, type->bv_len) == 0;
}

/* The entry of one record, NULL when it has none, such as the one with the version. */
static entry* parse(const char* text) {
  entry* result = checked(calloc(1, sizeof(entry)));
  result->record = checked(strdup(text));
  size_t room = 0;
  char* next = result->record;
  for (char* line = ldif_getline(&next); line != NULL; line = ldif_getline(&next)) {
    value found;
    int must_free = 0;
    if (ldif_parse_line2(line, &found.type, &found.value, &must_free) != 0) exit(1);
    if (is_type(&found.type, "version") && result->dn.bv_val == NULL) continue;
    if (is_type(&found.type, "dn")) {
      result->dn = found.value;
    } else {
      add_value(result, &room, &found);
    }
  }
  if (result->dn.bv_val == NULL) {
    free(result->values);
    free(result->record);
    free(result);
    return NULL;
  }
  result->key = key_of(&result->dn);
  return result;
}

static table read_file(const char* path) {
  table entries = {0};
  LDIFFP* file = ldif_open(path, "r");
  if (file == NULL) fail(path);
  char* record = NULL;
  int size = 0;
  unsigned long line_number = 0;
  int status = 0;
  while ((status = ldif_read_record(file, &line_number, &record, &size)) > 0) {
    entry* read = parse(record);
    if (read != NULL) add(&entries, read);
  }
  if (status < 0) exit(1);
  ber_memfree(record);
  ldif_close(file);
  return entries;
}

static int holds(const entry* owner, const value* wanted) {
  for (size_t i = 0; i < owner->count; ++i) {
    const value* own = &owner->values[i];
    if (own->value.bv_len == wanted->value.bv_len && own->type.bv_len == wanted->type.bv_len &&
        memcmp(own->value.bv_val, wanted->value.bv_val, wanted->value.bv_len) == 0 &&
        strncasecmp(own->type.bv_val, wanted->type.bv_val, wanted->type.bv_len) == 0)
      return 1;
  }
  return 0;
}

static void put(FILE* out, const struct berval* type, const struct berval* content) {
  static char* buffer = NULL;
  static size_t room = 0;
  const size_t needed = LDIF_SIZE_NEEDED(type->bv_len, content->bv_len) + 1;
  if (needed > room) buffer = checked(realloc(buffer, room = 2 * needed));
  char* end = buffer;
  ldif_sput(&end, LDIF_PUT_VALUE, type->bv_val, content->bv_val, content->bv_len);
  fwrite(buffer, 1, (size_t)(end - buffer), out);
}

static const struct berval k_dn = {2, (char*)"dn"};

static void put_entry(FILE* out, const entry* written) {
  put(out, &k_dn, &written->dn);
  for (size_t i = 0; i < written->count; ++i) put(out, &written->values[i].type, &written->values[i].value);
  putc('\n', out);
}

/* Prints the values of one that the other lacks; NULL for no entry at all. */
static void print_missing(char sign, const entry* one, const entry* other) {
  int printed = 0;
  for (size_t i = 0; i < one->count; ++i) {
    if (other != NULL && holds(other, &one->values[i])) continue;
    if (!printed) put(stdout, &k_dn, &one->dn);
    printed = 1;
    putchar(sign);
    put(stdout, &one->values[i].type, &one->values[i].value);
  }
}

static void difference(const table* old, const table* now) {
  for (size_t i = 0; i < old->count; ++i) print_missing('-', old->in_order[i], find(now, old->in_order[i]->key));
  for (size_t i = 0; i < now->count; ++i) print_missing('+', now->in_order[i], find(old, now->in_order[i]->key));
}

static void merge(const table* old, table* now) {
  for (size_t i = 0; i < old->count; ++i) {
    entry* from = old->in_order[i];
    entry* to = find(now, from->key);
    if (to == NULL) {
      add(now, from);
      continue;
    }
    size_t room = to->count;
    for (size_t k = 0; k < from->count; ++k) {
      if (!holds(to, &from->values[k])) add_value(to, &room, &from->values[k]);
    }
  }
}

static void write_file(const table* entries, const char* path) {
  char* beside = checked(malloc(strlen(path) + 5));
  sprintf(beside, "%s.new", path);
  FILE* out = fopen(beside, "w");
  if (out == NULL) fail(beside);
  for (size_t i = 0; i < entries->count; ++i) put_entry(out, entries->in_order[i]);
  if (fflush(out) != 0 || fsync(fileno(out)) != 0 || fclose(out) != 0) fail(beside);
  if (rename(beside, path) != 0) fail(path);
  free(beside);
}

int main(int argc, char** argv) {
  const char* const mode = argc > 1 ? argv[1] : "";
  const int merges = strcmp(mode, "merge") == 0;
  const int compares = strcmp(mode, "difference") == 0;
  if ((!merges && !compares && strcmp(mode, "read") != 0) || argc != (merges ? 5 : 4)) {
    fprintf(stderr, "usage: ldap_reader read|difference OLD NEW or ldap_reader merge OLD NEW OUT\n");
    return 2;
  }
  table old = read_file(argv[2]);
  table now = read_file(argv[3]);
  if (compares) difference(&old, &now);
  if (merges) {
    merge(&old, &now);
    write_file(&now, argv[4]);
  }
  fprintf(stderr, "%zu and %zu entries\n", old.count, now.count);
  return fflush(stdout) == 0 ? 0 : 1; /* the tables go with the process */
}
