// The calls of the system property-list library (libplist 2.2) that the file reader and writer
// make. Debian ships this library's C headers in a package of their own that the desktop
// set-up does not pull in, so the few calls used here are declared as the library exports them.
// Every call returns void in this version; failures show as null outputs.
#pragma once

#include <cstdint>

extern "C" {

typedef void* plist_t;
typedef void* plist_dict_iter;

typedef enum {
    PLIST_BOOLEAN,
    PLIST_UINT,
    PLIST_REAL,
    PLIST_STRING,
    PLIST_ARRAY,
    PLIST_DICT,
    PLIST_DATE,
    PLIST_DATA,
    PLIST_KEY,
    PLIST_UID,
    PLIST_NONE
} plist_type;

plist_t plist_new_dict(void);
plist_t plist_new_array(void);
plist_t plist_new_string(const char* val);
plist_t plist_new_bool(std::uint8_t val);
plist_t plist_new_uint(std::uint64_t val);
plist_t plist_new_real(double val);
plist_t plist_new_data(const char* val, std::uint64_t length);
plist_t plist_new_date(std::int32_t sec, std::int32_t usec);
void plist_free(plist_t plist);

std::uint32_t plist_array_get_size(plist_t node);
plist_t plist_array_get_item(plist_t node, std::uint32_t n);
void plist_array_append_item(plist_t node, plist_t item);

void plist_dict_new_iter(plist_t node, plist_dict_iter* iter);
void plist_dict_next_item(plist_t node, plist_dict_iter iter, char** key, plist_t* val);
void plist_dict_set_item(plist_t node, const char* key, plist_t item);

plist_type plist_get_node_type(plist_t node);
void plist_get_bool_val(plist_t node, std::uint8_t* val);
void plist_get_uint_val(plist_t node, std::uint64_t* val);
void plist_get_real_val(plist_t node, double* val);
const char* plist_get_string_ptr(plist_t node, std::uint64_t* length);
const char* plist_get_data_ptr(plist_t node, std::uint64_t* length);
void plist_get_date_val(plist_t node, std::int32_t* sec, std::int32_t* usec);

void plist_to_xml(plist_t plist, char** plist_xml, std::uint32_t* length);
void plist_to_xml_free(char* plist_xml);
void plist_from_xml(const char* plist_xml, std::uint32_t length, plist_t* plist);
void plist_from_bin(const char* plist_bin, std::uint32_t length, plist_t* plist);
int plist_is_binary(const char* plist_data, std::uint32_t length);
}
