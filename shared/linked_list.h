// The lists that a process keeps are singly linked through a member of their elements.
#ifndef SORVANE_SHARED_LINKED_LIST_H
#define SORVANE_SHARED_LINKED_LIST_H

/// Takes an element out of the list that begins at start; false when it is not in it.
template <class Element>
bool unlinkFrom(Element *&start, const Element *element, Element *Element::*next = &Element::next)
{
    for (Element **link = &start; *link; link = &((*link)->*next)) {
        if (*link != element)
            continue;
        *link = element->*next;
        return true;
    }
    return false;
}

#endif
