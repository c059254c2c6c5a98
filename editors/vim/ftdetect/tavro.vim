autocmd BufRead,BufNewFile *.plant setfiletype tavro
