nob
end_do

q
