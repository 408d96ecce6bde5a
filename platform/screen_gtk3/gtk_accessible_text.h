// The texts of fields, letter by letter, for who does not see them. For the module's thread.
#pragma once

#include <glib-object.h>

// Fill an AtkTextIface and an AtkEditableTextIface for the objects of gtk_accessible.h.
void FillAccessibleText(gpointer given, gpointer);
void FillAccessibleEditableText(gpointer given, gpointer);
