many
do i f=1 l=100000
seti a v=~i
end_do
if a .eq. 100000
right
endif
q
