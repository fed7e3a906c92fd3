batch
filein nosuchfile
filein
filein sub -noecho
filein sub.txt
return
do i f=1 l=2
filein sub
end_do
filein no_end
after_no_end
filein in_if
after_in_if
filein in_loop
after_in_loop
filein leaves_loop
after_leaves_loop
filein .
do i f=1 l=1
filein breaks
end_do
filein stops
wrong
