" Colours of plants as text (*.plant). The words are those of docs/language.md.
if exists("b:current_syntax")
  finish
endif

syn keyword tavroStatement plant sample window include constant set type order parameter variable input measure
syn keyword tavroStatement display mode command observe region move fail idle others clause constraint define import for
syn keyword tavroEquation follows integrates twice lags within responds damping frequency by keeping plain sharpened
syn keyword tavroPart from to when with setting starts symbol implies iff if
syn keyword tavroOperator and or not in all any
syn keyword tavroValue always never inf unknown none
syn match tavroLabel "^\s*\zs\h\w*\ze\s*:"
syn match tavroNumber "\<\d\+\(\.\d\+\)\?\([eE][-+]\?\d\+\)\?\>"
syn match tavroDelay "@"
syn region tavroString start=+"+ end=+"+ oneline
syn match tavroComment "#.*$" contains=tavroTodo
syn keyword tavroTodo contained TODO FIXME

hi def link tavroStatement Statement
hi def link tavroEquation Type
hi def link tavroPart Keyword
hi def link tavroOperator Operator
hi def link tavroValue Constant
hi def link tavroLabel Label
hi def link tavroNumber Number
hi def link tavroDelay Operator
hi def link tavroString String
hi def link tavroComment Comment
hi def link tavroTodo Todo

let b:current_syntax = "tavro"
