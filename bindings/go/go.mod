module temz

go 1.19
