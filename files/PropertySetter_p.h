// The setter of a component property: assigns and emits the property's NOTIFY signal, and does
// nothing when the value is the same.
#pragma once

#define MATTONI_PROPERTY_SETTER(Class, Name, member, Type)                                         \
    void Class::set##Name(Type value)                                                              \
    {                                                                                              \
        if (member == value)                                                                       \
            return;                                                                                \
        member = value;                                                                            \
        emit Name##Changed();                                                                      \
    }
